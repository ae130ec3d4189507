#include "host/viewport/backends/gl_program.h"

#include <utility>

#include "host/base/assert.h"
#include "host/base/messages.h"

namespace host::viewport {

namespace {

GLuint compile(GLenum kind, const std::string& source) {
  const GLuint shader = glCreateShader(kind);
  const char* text = source.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint done = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &done);
  if (!done) {
    char log[2048] = "";
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    postMessage(MessageKind::Error, log);
  }
  HOST_ASSERT(done, "the driver must accept GLSL 1.50; see the log above");
  return shader;
}

}  // namespace

GlProgram::GlProgram(const std::string& vertex, const std::string& geometry,
                     const std::string& fragment)
    : id_(glCreateProgram()) {
  GLuint shaders[3] = {compile(GL_VERTEX_SHADER, vertex), compile(GL_FRAGMENT_SHADER, fragment), 0};
  if (!geometry.empty()) shaders[2] = compile(GL_GEOMETRY_SHADER, geometry);
  for (const GLuint shader : shaders)
    if (shader) glAttachShader(id_, shader);
  glBindAttribLocation(id_, kPositionSlot, "position");
  glBindAttribLocation(id_, kNormalSlot, "normal");
  glBindAttribLocation(id_, kColorSlot, "color");
  glBindAttribLocation(id_, kUvSlot, "uv");
  glLinkProgram(id_);
  for (const GLuint shader : shaders)
    if (shader) glDeleteShader(shader);
  GLint done = 0;
  glGetProgramiv(id_, GL_LINK_STATUS, &done);
  if (!done) {
    char log[2048] = "";
    glGetProgramInfoLog(id_, sizeof log, nullptr, log);
    postMessage(MessageKind::Error, log);
  }
  HOST_ASSERT(done, "the stages' inputs and outputs must agree; see the log above");
}

GlProgram::~GlProgram() {
  if (id_) glDeleteProgram(id_);
}

GlProgram& GlProgram::operator=(GlProgram&& other) noexcept {
  std::swap(id_, other.id_);
  return *this;
}

void GlProgram::set(const char* name, const Vec3& value) const {
  const Vec3f v = value.toFloat();
  glUniform3f(at(name), v.x, v.y, v.z);
}

void GlProgram::set(const char* name, double x, double y, double z, double w) const {
  glUniform4f(at(name), static_cast<float>(x), static_cast<float>(y), static_cast<float>(z),
              static_cast<float>(w));
}

void GlProgram::setWhole(const char* name, int x, int y, int z, int w) const {
  glUniform4i(at(name), x, y, z, w);
}

void GlProgram::set(const char* name, const Rgba& value) const {
  glUniform4f(at(name), value.r, value.g, value.b, value.a);
}

void GlProgram::set(const char* name, const Matrix4& value) const {
  GLfloat floats[16];
  for (int i = 0; i < 16; ++i) floats[i] = static_cast<GLfloat>(value[i / 4][i % 4]);
  glUniformMatrix4fv(at(name), 1, GL_FALSE, floats);
}

void GlProgram::setNormalMatrix(const char* name, const Matrix4& value) const {
  GLfloat floats[9];
  for (int row = 0; row < 3; ++row) {
    const Vec3 unit{row == 0 ? 1.0 : 0.0, row == 1 ? 1.0 : 0.0, row == 2 ? 1.0 : 0.0};
    const Vec3f n = math::transformNormal(unit, value).toFloat();
    floats[3 * row] = n.x;
    floats[3 * row + 1] = n.y;
    floats[3 * row + 2] = n.z;
  }
  glUniformMatrix3fv(at(name), 1, GL_FALSE, floats);
}

}  // namespace host::viewport
