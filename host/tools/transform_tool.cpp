#include "host/tools/transform_tool.h"

#include <cmath>

#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/tools/tool_registry.h"

namespace host::tools {
namespace {

constexpr double kDegreesPerPixel = 0.5;
constexpr double kPixelsPerDoubling = 100;

}  // namespace

void TransformTool::press(const InputEvent& event) {
  SelectTool::press(event);
  isDragging_ = event.button == MouseButton::Middle;
  start_ = event.position;
  panel_ = event.panel;
}

void TransformTool::abort() {
  SelectTool::abort();
  isDragging_ = false;
}

std::string TransformTool::commandFor(viewport::ViewPoint end) const {
  const double dx = end.x - start_.x;
  if (change_ == Change::Rotate) return fmt::format("rotate -r 0 {} 0", dx * kDegreesPerPixel);
  if (change_ == Change::Scale) {
    const double factor = std::exp2(dx / kPixelsPerDoubling);
    return fmt::format("scale -r {0} {0} {0}", factor);
  }
  if (!registry_.views.scene) return {};
  const auto view = registry_.views.scene(panel_);
  if (!view) return {};
  // What is dragged follows the pointer at the depth of its middle.
  math::Vec3 middle = view->camera.centerOfInterestPoint();
  if (const std::vector<math::Vec3> points = viewport::selectionPoints(*view); !points.empty()) {
    middle = {};
    for (const math::Vec3& point : points)
      middle = middle + point * (1.0 / static_cast<double>(points.size()));
  }
  const viewport::ViewProjection projection(view->camera, view->port);
  const math::Vec3 by =
      projection.viewToWorldAt(end, middle) - projection.viewToWorldAt(start_, middle);
  return fmt::format("move -r {} {} {}", by.x, by.y, by.z);
}

void TransformTool::release(const InputEvent& event) {
  SelectTool::release(event);
  if (!isDragging_) return;
  isDragging_ = false;
  cmd::Session& session = cmd::currentSession();
  const bool isMoved = event.position.x != start_.x || event.position.y != start_.y;
  const std::string command = commandFor(event.position);
  if (isMoved && !command.empty() && !session.document().selection().isEmpty())
    (void)session.executeLine(command);
}

}  // namespace host::tools
