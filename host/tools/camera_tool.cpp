#include "host/tools/camera_tool.h"

#include "host/base/messages.h"
#include "host/tools/tool_registry.h"
#include "host/viewport/camera_moves.h"

namespace host::tools {
namespace {

const char* classNameOf(CameraTool::Gesture gesture) {
  if (gesture == CameraTool::Gesture::Tumble) return "tumble";
  return gesture == CameraTool::Gesture::Track ? "track" : "dolly";
}

}  // namespace

CameraTool::CameraTool(ToolRegistry& registry, Gesture gesture)
    : ToolContext(classNameOf(gesture)), registry_(registry), gesture_(gesture) {}

void CameraTool::press(const InputEvent& event) {
  last_ = event.position;
}

void CameraTool::drag(const InputEvent& event) {
  const double dx = event.position.x - last_.x, dy = event.position.y - last_.y;
  last_ = event.position;
  if (!registry_.views.scene || !registry_.views.setCamera) return;
  const auto view = registry_.views.scene(event.panel);
  if (!view) return postMessage(MessageKind::Error, view.error().message);
  viewport::Camera camera = view->camera;
  // An axis view has no other side to look from.
  if (gesture_ == Gesture::Tumble && camera.orthographic) return;
  if (gesture_ == Gesture::Tumble)
    viewport::tumbleByDrag(camera, view->port,
                           viewport::tumbleCentre(camera, registry_.tumblesAboutInterest), dx, dy);
  else if (gesture_ == Gesture::Track)
    viewport::track(camera, view->port, dx, dy);
  else
    viewport::dollyByDrag(camera, view->port, dx, dy);
  if (const auto done = registry_.views.setCamera(event.panel, camera); !done)
    postMessage(MessageKind::Error, done.error().message);
}

}  // namespace host::tools
