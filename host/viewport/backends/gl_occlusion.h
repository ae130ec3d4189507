#pragma once

#include "host/viewport/backends/gl_program.h"
#include "host/viewport/backends/gl_target.h"

namespace host::viewport {

/// Darkens creases and contacts of what a target holds so far, judged from its depth alone.
class GlOcclusion {
 public:
  GlOcclusion();
  ~GlOcclusion();
  GlOcclusion(const GlOcclusion&) = delete;
  GlOcclusion& operator=(const GlOcclusion&) = delete;

  /// @param pixelSize world length of a pixel at depth 1 (perspective) or everywhere (orthographic)
  void apply(const GlTarget& target, const Matrix4& projection, double pixelSize,
             bool isOrthographic);

 private:
  void resize(PortSize port);

  GlProgram measure_, blur_;
  GLuint framebuffer_ = 0, texture_ = 0;
  PortSize size_{0, 0};
};

}  // namespace host::viewport
