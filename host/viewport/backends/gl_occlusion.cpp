#include "host/viewport/backends/gl_occlusion.h"

#include <algorithm>

#include "host/viewport/backends/gl_shaders.h"

namespace host::viewport {

GlOcclusion::GlOcclusion()
    : measure_(shaders::screenVertex(), {}, shaders::occlusionFragment()),
      blur_(shaders::screenVertex(), {}, shaders::occlusionBlurFragment()) {
  glGenFramebuffers(1, &framebuffer_);
  glGenTextures(1, &texture_);
}

GlOcclusion::~GlOcclusion() {
  glDeleteFramebuffers(1, &framebuffer_);
  glDeleteTextures(1, &texture_);
}

void GlOcclusion::resize(PortSize port) {
  if (port == size_) return;
  size_ = port;
  glBindTexture(GL_TEXTURE_2D, texture_);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, port.width, port.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
               nullptr);
  for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
    glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
  for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
    glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
}

void GlOcclusion::apply(const GlTarget& target, const Matrix4& projection, double pixelSize,
                        bool isOrthographic) {
  const auto unprojection = math::inverse(projection);
  if (!unprojection) return;
  target.resolveDepth();
  resize(target.size());
  const auto set = [&](const GlProgram& program) {
    program.use();
    program.set("depth", 0);
    program.set("occlusion", 1);
    program.set("unprojection", *unprojection);
    program.set("portSize", static_cast<float>(size_.width), static_cast<float>(size_.height));
    program.set("pixelSize", static_cast<float>(pixelSize));
    program.set("orthographic", isOrthographic ? 1 : 0);
  };
  glDisable(GL_STENCIL_TEST);
  glDisable(GL_DEPTH_TEST);
  glDisable(GL_BLEND);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, target.depthTexture());
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  set(measure_);
  measure_.set("radiusPixels", static_cast<float>(std::max(size_.width, size_.height)) * 0.035f);
  glDrawArrays(GL_TRIANGLES, 0, 3);

  target.bind();
  glActiveTexture(GL_TEXTURE1);
  glBindTexture(GL_TEXTURE_2D, texture_);
  set(blur_);
  glEnable(GL_BLEND);
  glBlendFuncSeparate(GL_ZERO, GL_SRC_COLOR, GL_ZERO, GL_ONE);
  glEnable(GL_STENCIL_TEST);
  glStencilFunc(GL_EQUAL, 1, 0xff);
  glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
  glDrawArrays(GL_TRIANGLES, 0, 3);
  glBindTexture(GL_TEXTURE_2D, 0);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, 0);
}

}  // namespace host::viewport
