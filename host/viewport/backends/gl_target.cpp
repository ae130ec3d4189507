#include "host/viewport/backends/gl_target.h"

#include <algorithm>

namespace host::viewport {

namespace {

constexpr GLint kWantedSamples = 4;

GLuint makeRenderbuffer(GLint samples, GLenum format, PortSize port, GLenum attachment) {
  GLuint id = 0;
  glGenRenderbuffers(1, &id);
  glBindRenderbuffer(GL_RENDERBUFFER, id);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, port.width, port.height);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, id);
  return id;
}

GLuint makeDepthTexture(PortSize port) {
  GLuint id = 0;
  glGenTextures(1, &id);
  glBindTexture(GL_TEXTURE_2D, id);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH24_STENCIL8, port.width, port.height, 0, GL_DEPTH_STENCIL,
               GL_UNSIGNED_INT_24_8, nullptr);
  for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
    glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
  for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
    glTexParameteri(GL_TEXTURE_2D, wrap, GL_CLAMP_TO_EDGE);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D, id, 0);
  glBindTexture(GL_TEXTURE_2D, 0);
  return id;
}

}  // namespace

Result<void> GlTarget::resize(PortSize port) {
  if (exists() && port == size_) return {};
  destroy();
  while (glGetError() != GL_NO_ERROR) {
  }
  GLint maxSamples = 0;
  glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
  const GLint samples = std::min(kWantedSamples, maxSamples);
  glGenFramebuffers(1, &multisampled_);
  glBindFramebuffer(GL_FRAMEBUFFER, multisampled_);
  color_ = makeRenderbuffer(samples, GL_RGBA8, port, GL_COLOR_ATTACHMENT0);
  depth_ = makeRenderbuffer(samples, GL_DEPTH24_STENCIL8, port, GL_DEPTH_STENCIL_ATTACHMENT);
  const bool isDrawable = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  glGenFramebuffers(1, &plain_);
  glBindFramebuffer(GL_FRAMEBUFFER, plain_);
  plainColor_ = makeRenderbuffer(0, GL_RGBA8, port, GL_COLOR_ATTACHMENT0);
  depthTexture_ = makeDepthTexture(port);
  const bool isReadable = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (!isDrawable || !isReadable || glGetError() != GL_NO_ERROR) {
    destroy();
    return fail(ErrorKind::OutOfMemory,
                "The OpenGL driver has no memory for a picture of {} by {} pixels.", port.width,
                port.height);
  }
  size_ = port;
  bind();
  return {};
}

void GlTarget::resolve(GLbitfield what) const {
  glBindFramebuffer(GL_READ_FRAMEBUFFER, multisampled_);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, plain_);
  glBlitFramebuffer(0, 0, size_.width, size_.height, 0, 0, size_.width, size_.height, what,
                    GL_NEAREST);
  bind();
}

void GlTarget::destroy() {
  if (!multisampled_) return;
  const GLuint framebuffers[] = {multisampled_, plain_};
  const GLuint renderbuffers[] = {color_, depth_, plainColor_};
  glDeleteFramebuffers(2, framebuffers);
  glDeleteRenderbuffers(3, renderbuffers);
  glDeleteTextures(1, &depthTexture_);
  multisampled_ = plain_ = color_ = depth_ = plainColor_ = depthTexture_ = 0;
  size_ = {};
}

}  // namespace host::viewport
