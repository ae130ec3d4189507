#include "host/tools/camera_tool.h"

#include <cmath>

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
  restX_ = restY_ = 0;
}

void CameraTool::turn(viewport::Camera& camera, viewport::PortSize port, double dx, double dy) {
  const TumbleSettings& settings = registry_.tumble;
  // An axis view has no other side to look from.
  if (camera.orthographic && settings.locksAxes) return;
  dx *= settings.scale;
  dy *= settings.scale;
  if (camera.orthographic && settings.isStepped && settings.stepDegrees > 0) {
    const double step = settings.stepDegrees / viewport::tumbleDegreesPerPixel(port);
    restX_ += dx;
    restY_ += dy;
    dx = std::trunc(restX_ / step) * step;
    dy = std::trunc(restY_ / step) * step;
    restX_ -= dx;
    restY_ -= dy;
  }
  math::Vec3 pivot =
      viewport::tumbleCentre(camera, settings.pivot == TumblePivot::CenterOfInterest);
  if (settings.pivot == TumblePivot::Eye)
    pivot = camera.eye() + camera.right() * camera.tumblePivot.x +
            camera.up() * camera.tumblePivot.y - camera.viewDirection() * camera.tumblePivot.z;
  viewport::tumbleByDrag(camera, port, pivot, dx, dy);
}

void CameraTool::drag(const InputEvent& event) {
  const double dx = event.position.x - last_.x, dy = event.position.y - last_.y;
  last_ = event.position;
  if (!registry_.views.scene || !registry_.views.setCamera) return;
  const auto view = registry_.views.scene(event.panel);
  if (!view) return postMessage(MessageKind::Error, view.error().message);
  viewport::Camera camera = view->camera;
  if (gesture_ == Gesture::Tumble)
    turn(camera, view->port, dx, dy);
  else if (gesture_ == Gesture::Track)
    viewport::track(camera, view->port, dx, dy);
  else
    viewport::dollyByDrag(camera, view->port, dx, dy);
  if (camera == view->camera) return;
  if (const auto done = registry_.views.setCamera(event.panel, camera); !done)
    postMessage(MessageKind::Error, done.error().message);
}

}  // namespace host::tools
