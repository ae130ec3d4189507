#pragma once

#include <memory>

#include "host/viewport/backends/backend.h"

namespace host::viewport {

/// A backend on OpenGL (compatibility profile, 3.2 or later) with its own multisampled framebuffer.
class GlBackend : public Backend {
 public:
  /// On a context of its own, without window or display server. Fails where the machine has no
  /// driver for that.
  [[nodiscard]] static Result<std::unique_ptr<GlBackend>> createOffscreen();
  /// On the context that is current now, a window's; that context must be current at every later
  /// call. Fails when it is too old.
  [[nodiscard]] static Result<std::unique_ptr<GlBackend>> createOnCurrentContext();

  /// Copies the last picture to the lower left of a framebuffer of the current context (0: the
  /// window).
  virtual void present(unsigned framebuffer) = 0;
};

}  // namespace host::viewport
