#pragma once

#include "host/viewport/backends/backend.h"
#include "host/viewport/backends/gl_api.h"

namespace host::viewport {

/// What a frame is drawn into: a multisampled colour and depth buffer, and single-sampled copies
/// for reading and for effects that need to look at the picture so far.
class GlTarget {
 public:
  GlTarget() = default;
  ~GlTarget() { destroy(); }
  GlTarget(const GlTarget&) = delete;
  GlTarget& operator=(const GlTarget&) = delete;

  /// Makes the buffers fit; keeps them when they do already.
  [[nodiscard]] Result<void> resize(PortSize port);
  void bind() const { glBindFramebuffer(GL_FRAMEBUFFER, multisampled_); }
  /// Averages the samples into the plain colour buffer; leaves the multisampled one bound.
  void resolveColor() const { resolve(GL_COLOR_BUFFER_BIT); }
  /// Copies depth into the plain depth texture; leaves the multisampled one bound.
  void resolveDepth() const { resolve(GL_DEPTH_BUFFER_BIT); }
  [[nodiscard]] GLuint depthTexture() const { return depthTexture_; }
  [[nodiscard]] GLuint resolvedFramebuffer() const { return plain_; }
  [[nodiscard]] PortSize size() const { return size_; }
  [[nodiscard]] bool exists() const { return multisampled_ != 0; }

 private:
  void resolve(GLbitfield what) const;
  void destroy();

  PortSize size_;
  GLuint multisampled_ = 0, plain_ = 0;
  GLuint color_ = 0, depth_ = 0, plainColor_ = 0, depthTexture_ = 0;
};

}  // namespace host::viewport
