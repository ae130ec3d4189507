#include "host/api/fn/curved_target.h"

#include "host/api/mesh/mesh_target.h"
#include "host/nodes/curve/curve_nodes.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/scene/curve_data.h"
#include "host/scene/surface_data.h"

namespace host::api {

CurvedTarget::CurvedTarget(const MObject& object, const MDagPath& path, const char* kind) {
  if (auto* value = objectAs<DataRep>(object)) {
    if (!value->data || value->data->typeName() != kind) return;
    keepAlive_ = Access::handle(object);
    value_ = value;
    return;
  }
  dg::Node* node = nodeOf(object);
  if (path.isValid()) {
    path_ = pathOf(path).toShape();
    if (path_.isWorld()) return;
    node = path_.node();
  } else if (node && node->isAlive() && scene::isDagNode(*node) && !scene::isShape(*node)) {
    const scene::DagPath shape = scene::firstPath(*node).toShape();
    node = shape.isWorld() ? nullptr : shape.node();
  }
  if (!node || !node->isAlive() || !node->type().isA(kind)) return;
  node_ = node->shared_from_this();
  shape_ = node;
}

std::optional<math::NurbsCurve> CurvedTarget::curve(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  if (value_) {
    const auto* data = dynamic_cast<const scene::CurveData*>(value_->data.get());
    if (data) return data->curve;
  } else if (shape_ && shape_->isAlive()) {
    auto curve = nodes::evaluatedCurve(*shape_);
    if (curve) return *std::move(curve);
    rememberError(curve.error());
  }
  setStatus(status, MStatus::kFailure);
  return std::nullopt;
}

std::optional<math::NurbsSurface> CurvedTarget::surface(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  if (value_) {
    const auto* data = dynamic_cast<const scene::SurfaceData*>(value_->data.get());
    if (data) return data->surface;
  } else if (shape_ && shape_->isAlive()) {
    auto surface = nodes::evaluatedSurface(*shape_);
    if (surface) return *std::move(surface);
    rememberError(surface.error());
  }
  setStatus(status, MStatus::kFailure);
  return std::nullopt;
}

MStatus CurvedTarget::write(math::NurbsCurve curve) const {
  if (value_) {
    const auto good = math::check(curve);
    if (good) value_->data = std::make_shared<scene::CurveData>(std::move(curve));
    return toStatus(good);
  }
  if (!shape_ || !shape_->isAlive()) return MStatus::kFailure;
  return toStatus(nodes::setStoredCurve(*shape_, std::move(curve)));
}

MStatus CurvedTarget::write(math::NurbsSurface surface) const {
  if (value_) {
    const auto good = math::check(surface);
    if (good) value_->data = std::make_shared<scene::SurfaceData>(std::move(surface));
    return toStatus(good);
  }
  if (!shape_ || !shape_->isAlive()) return MStatus::kFailure;
  return toStatus(nodes::setStoredSurface(*shape_, std::move(surface)));
}

MStatus CurvedTarget::spaceMatrix(MSpace::Space space,
                                  std::optional<math::Matrix4>& toSpace) const {
  toSpace.reset();
  if (space == MSpace::kObject || value_) return MStatus::kSuccess;
  if (space != MSpace::kWorld) return MStatus::kInvalidParameter;
  if (path_.isWorld() || !path_.isValid()) return MStatus::kInvalidParameter;
  toSpace = path_.inclusiveMatrix();
  if (math::isIdentity(*toSpace)) toSpace.reset();
  return MStatus::kSuccess;
}

CurvedPoints::CurvedPoints(const MObject& object, const MDagPath& path)
    : target_(object, path, "nurbsSurface") {
  if (!target_.isNull()) {
    surface_ = target_.surface(nullptr);
    if (surface_) points_ = surface_->points;
    isThere_ = surface_.has_value();
    return;
  }
  target_ = CurvedTarget(object, path, "nurbsCurve");
  if (target_.isNull()) return;
  curve_ = target_.curve(nullptr);
  if (curve_) points_ = curve_->points;
  isThere_ = curve_.has_value();
}

MPoint CurvedPoints::point(std::size_t index, MSpace::Space space, MStatus* status) const {
  std::optional<math::Matrix4> toSpace;
  const MStatus known =
      index < points_.size() ? target_.spaceMatrix(space, toSpace) : MStatus(MStatus::kFailure);
  setStatus(status, known.statusCode());
  if (!known) return {};
  MPoint point =
      toMPoint(toSpace ? math::transformPoint(points_[index], *toSpace) : points_[index]);
  const std::vector<double>& weights = surface_ ? surface_->weights : curve_->weights;
  if (!weights.empty()) point.w = weights[index];
  return point;
}

MStatus CurvedPoints::setPoint(std::size_t index, const MPoint& point, MSpace::Space space) {
  if (index >= points_.size()) return MStatus::kFailure;
  std::optional<math::Matrix4> toSpace;
  const MStatus known = target_.spaceMatrix(space, toSpace);
  if (!known) return known;
  math::Vec3 place = toVec3(point);
  if (toSpace) {
    const auto back = math::inverse(*toSpace);
    if (!back) return MStatus::kFailure;
    place = math::transformPoint(place, *back);
  }
  if (!math::isFinite(place)) return MStatus::kInvalidParameter;
  points_[index] = place;
  isChanged_ = true;
  return MStatus::kSuccess;
}

MStatus CurvedPoints::flush() {
  if (!isChanged_) return MStatus::kSuccess;
  isChanged_ = false;
  if (surface_) {
    surface_->points = points_;
    if (!target_.shape()) return target_.write(*surface_);
    return toStatus(nodes::moveSurfacePoints(*target_.shape(), points_));
  }
  curve_->points = points_;
  return target_.write(*curve_);
}

}  // namespace host::api
