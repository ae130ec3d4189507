#pragma once

#include <string>

#include "host/math/matrix4.h"
#include "host/viewport/backends/gl_api.h"
#include "host/viewport/draw_list.h"

namespace host::viewport {

/// Attribute slots that all programs share.
enum GlAttribute : GLuint { kPositionSlot = 0, kNormalSlot = 1, kColorSlot = 2, kUvSlot = 3 };

/// A linked shader program. Compiling our own sources can't fail but for a driver too old; that is
/// an assertion with its log.
class GlProgram {
 public:
  GlProgram() = default;
  /// @param geometry empty for none
  GlProgram(const std::string& vertex, const std::string& geometry, const std::string& fragment);
  ~GlProgram();
  GlProgram(GlProgram&& other) noexcept : id_(other.id_) { other.id_ = 0; }
  GlProgram& operator=(GlProgram&& other) noexcept;

  void use() const { glUseProgram(id_); }
  // These act on the program in use; names that the program doesn't use are ignored.
  void set(const char* name, int value) const { glUniform1i(at(name), value); }
  void set(const char* name, float value) const { glUniform1f(at(name), value); }
  void set(const char* name, float x, float y) const { glUniform2f(at(name), x, y); }
  void set(const char* name, const Vec3& value) const;
  void set(const char* name, double x, double y, double z, double w) const;
  void setWhole(const char* name, int x, int y, int z, int w) const;
  void set(const char* name, const Rgba& value) const;
  void set(const char* name, const Matrix4& value) const;
  /// Sets a mat3 to the inverse transpose of the linear part, for normals.
  void setNormalMatrix(const char* name, const Matrix4& value) const;

 private:
  [[nodiscard]] GLint at(const char* name) const { return glGetUniformLocation(id_, name); }
  GLuint id_ = 0;
};

}  // namespace host::viewport
