#include "host/tools/transform_tool.h"

#include <cmath>
#include <numbers>

#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/edits/move.h"
#include "host/edits/rotate_scale.h"
#include "host/edits/transform_targets.h"
#include "host/math/euler.h"
#include "host/math/quaternion.h"
#include "host/tools/tool_registry.h"

namespace host::tools {
namespace {

using math::Vec3;

constexpr double kRadiansPerPixel = 0.5 * std::numbers::pi / 180;
constexpr double kPixelsPerDoubling = 100;

const char* nameOf(TransformTool::Change change) {
  if (change == TransformTool::Change::Rotate) return "rotate";
  return change == TransformTool::Change::Scale ? "scale" : "move";
}

/// The middle of what is selected: of the points that show, else of the objects' pivots.
Vec3 middleOf(const viewport::SceneView& view, const scene::SelectionList& selection) {
  const std::vector<Vec3> points = viewport::selectionPoints(view);
  if (points.empty()) {
    const Vec3 target = view.camera.centerOfInterestPoint();
    const Vec3 middle = edits::middleOfPivots(selection).value_or(target);
    // What is at the eye, as the camera itself, has no way across the picture: it goes as far as
    // what is looked at does.
    const double depth = math::dot(middle - view.camera.eye(), view.camera.viewDirection());
    return view.camera.orthographic || depth > view.camera.nearClip ? middle : target;
  }
  Vec3 sum;
  for (const Vec3& point : points) sum = sum + point;
  return sum * (1.0 / static_cast<double>(points.size()));
}

/// A turn about a unit axis as angles about x, y, z; exact about a coordinate axis.
Vec3 turnAbout(const Vec3& axis, double radians) {
  for (int i = 0; i < 3; ++i) {
    if (std::abs(axis[i]) < 1 - 1e-12) continue;
    Vec3 angles;
    angles[i] = std::copysign(radians, axis[i] * radians);
    return angles;
  }
  return math::matrixToEuler(math::toMatrix(math::axisAngle(axis, radians)),
                             math::RotateOrder::XYZ);
}

}  // namespace

void TransformTool::press(const InputEvent& event) {
  SelectTool::press(event);
  cleanup();
  isDragging_ = event.button == MouseButton::Middle;
  start_ = last_ = event.position;
  panel_ = event.panel;
  lastError_.clear();
}

/// Takes hold of what is selected, from where the pointer was last.
void TransformTool::grip() {
  grip_.reset();
  scene::Document& document = cmd::currentSession().document();
  if (document.selection().isEmpty() || !registry_.views.scene) return;
  const auto view = registry_.views.wholeOf(panel_);
  if (!view) return complain(view.error().message);
  grip_.emplace(Grip{document.selection(), viewport::ViewProjection(view->camera, view->port),
                     middleOf(*view, document.selection()), last_});
  gesture_ = std::make_unique<edits::Gesture>(document, steps_, nameOf(change_));
}

Result<void> TransformTool::edit(const Grip& grip, viewport::ViewPoint pointer) const {
  scene::Document& document = cmd::currentSession().document();
  const double dx = pointer.x - grip.start.x;
  if (change_ == Change::Rotate) {
    const bool isFlat = grip.projection.camera().orthographic;
    const Vec3 axis = isFlat ? grip.projection.towardsViewer(grip.middle) : Vec3{0, 1, 0};
    return edits::rotate(document, grip.selection,
                         {.amount = turnAbout(axis, dx * kRadiansPerPixel),
                          .isRelative = true,
                          .isWorld = true,
                          .soft = &soft_});
  }
  if (change_ == Change::Scale) {
    const double factor = std::exp2(dx / kPixelsPerDoubling);
    return edits::scale(document, grip.selection,
                        {.amount = {factor, factor, factor}, .isRelative = true, .soft = &soft_});
  }
  const Vec3 by = grip.projection.viewToWorldAt(pointer, grip.middle) -
                  grip.projection.viewToWorldAt(grip.start, grip.middle);
  return edits::move(document, grip.selection, {.amount = by, .isRelative = true, .soft = &soft_});
}

void TransformTool::follow(viewport::ViewPoint pointer) {
  const bool isStill = pointer.x == last_.x && pointer.y == last_.y;
  if (isStill && !gesture_) return;  // a click changes nothing
  // When other code made a step meanwhile, the drag goes on from where it was then.
  if (!gesture_ || !gesture_->isActive()) grip();
  last_ = pointer;
  if (!grip_ || !gesture_) return;
  const auto done = gesture_->preview([&] { return edit(*grip_, pointer); });
  if (!done) complain(done.error().message);
}

void TransformTool::complain(const std::string& message) {
  if (message == lastError_) return;
  lastError_ = message;
  postMessage(MessageKind::Error, message);
}

void TransformTool::drag(const InputEvent& event) {
  SelectTool::drag(event);
  if (isDragging_) follow(event.position);
}

void TransformTool::release(const InputEvent& event) {
  SelectTool::release(event);
  if (!isDragging_) return;
  follow(event.position);
  cleanup();
}

void TransformTool::abort() {
  SelectTool::abort();
  if (gesture_) gesture_->cancel();
  cleanup();
}

void TransformTool::cleanup() {
  // What has been seen to move stays moved when another tool is taken in the midst of a drag.
  if (gesture_) gesture_->commit();
  gesture_.reset();
  grip_.reset();
  isDragging_ = false;
}

}  // namespace host::tools
