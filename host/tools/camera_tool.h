#pragma once

#include "host/tools/tool_context.h"
#include "host/viewport/camera.h"

namespace host::tools {

/// Moves the camera of the view that is dragged in. Not undoable, as camera moves aren't.
class CameraTool final : public ToolContext {
 public:
  enum class Gesture : std::uint8_t { Tumble, Track, Dolly };
  CameraTool(ToolRegistry& registry, Gesture gesture);
  void press(const InputEvent& event) override;
  void drag(const InputEvent& event) override;

 private:
  /// Turns the camera by a drag of (dx, dy) pixels, as the registry's settings say.
  void turn(viewport::Camera& camera, viewport::PortSize port, double dx, double dy);

  ToolRegistry& registry_;
  Gesture gesture_;
  viewport::ViewPoint last_;
  double restX_ = 0, restY_ = 0;  ///< pixels dragged that haven't made a whole step yet
};

}  // namespace host::tools
