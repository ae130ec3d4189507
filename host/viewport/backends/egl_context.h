#pragma once

#include <memory>

#include "host/base/result.h"

namespace host::viewport {

/// An OpenGL compatibility context without window or display server.
class EglContext {
 public:
  /// Fails, naming the step, where the machine has no EGL driver that can draw off screen.
  [[nodiscard]] static Result<std::unique_ptr<EglContext>> create();
  ~EglContext();
  EglContext(const EglContext&) = delete;
  EglContext& operator=(const EglContext&) = delete;

  void makeCurrent() const;
  void release() const;

 private:
  EglContext(void* display, void* context) : display_(display), context_(context) {}
  void* display_;
  void* context_;
};

}  // namespace host::viewport
