#include <maya/MFnTransform.h>

#include <functional>
#include <optional>

#include "host/api/core/access.h"
#include "host/api/value/convert.h"
#include "host/api/value/transform_parts.h"
#include "host/nodes/transform.h"

namespace host::api {
namespace {

using Parts = math::TransformComponents;

std::optional<MTransformationMatrix> readTransform(const MObject& object,
                                                   MStatus* status = nullptr) {
  dg::Node* node = nodeOf(object);
  if (!node || !scene::isTransform(*node)) {
    setStatus(status, MStatus::kFailure);
    return std::nullopt;
  }
  const auto parts = nodes::readTransform(*node);
  setStatus(status, toStatus(parts).statusCode());
  if (!parts) return std::nullopt;
  return TransformParts::make(*parts);
}

MStatus writeTransform(const MObject& object, const MTransformationMatrix& transform) {
  dg::Node* node = nodeOf(object);
  if (!node || !scene::isTransform(*node)) return MStatus::kFailure;
  return toStatus(nodes::writeTransform(*node, TransformParts::of(transform)));
}

/// Reads, lets `change` work on the value, and writes what differs.
MStatus edit(const MObject& object, const std::function<MStatus(MTransformationMatrix&)>& change) {
  MStatus status;
  auto transform = readTransform(object, &status);
  if (!transform) return status;
  status = change(*transform);
  return status ? writeTransform(object, *transform) : status;
}

/// Parent space to world. World space needs a path, since an instanced node has several.
MStatus parentMatrix(const MDagPath& path, math::Matrix4& matrix) {
  const scene::DagPath& inner = pathOf(path);
  if (inner.isWorld()) {
    rememberError(Error{"World space needs a function set that was given a DAG path"});
    return MStatus::kInvalidParameter;
  }
  matrix = inner.exclusiveMatrix();
  return MStatus::kSuccess;
}

math::Quaternion rotationOf(const math::Matrix4& matrix) {
  const Parts parts = math::decompose(matrix);
  return math::eulerToQuaternion(parts.rotate, parts.rotateOrder);
}

/// The matrix that takes a pivot, which its own part of the transform leaves in place, to the
/// parent's space.
math::Matrix4 pivotMatrix(Parts parts, bool isScalePivot) {
  parts.scale = {1, 1, 1};
  parts.shear = {};
  if (!isScalePivot) parts.scalePivotTranslate = {};
  return math::toMatrix(parts);
}

struct Limit {
  const char* attribute;
  const char* enable;
};

Limit limitOf(MFnTransform::LimitType type) {
  static constexpr Limit kLimits[] = {
      {"minScaleXLimit", "minScaleXLimitEnable"},
      {"maxScaleXLimit", "maxScaleXLimitEnable"},
      {"minScaleYLimit", "minScaleYLimitEnable"},
      {"maxScaleYLimit", "maxScaleYLimitEnable"},
      {"minScaleZLimit", "minScaleZLimitEnable"},
      {"maxScaleZLimit", "maxScaleZLimitEnable"},
      {nullptr, nullptr},
      {nullptr, nullptr},
      {nullptr, nullptr},
      {nullptr, nullptr},
      {nullptr, nullptr},
      {nullptr, nullptr},
      {"minRotXLimit", "minRotXLimitEnable"},
      {"maxRotXLimit", "maxRotXLimitEnable"},
      {"minRotYLimit", "minRotYLimitEnable"},
      {"maxRotYLimit", "maxRotYLimitEnable"},
      {"minRotZLimit", "minRotZLimitEnable"},
      {"maxRotZLimit", "maxRotZLimitEnable"},
      {"minTransXLimit", "minTransXLimitEnable"},
      {"maxTransXLimit", "maxTransXLimitEnable"},
      {"minTransYLimit", "minTransYLimitEnable"},
      {"maxTransYLimit", "maxTransYLimitEnable"},
      {"minTransZLimit", "minTransZLimitEnable"},
      {"maxTransZLimit", "maxTransZLimitEnable"},
  };
  return type >= 0 && static_cast<std::size_t>(type) < std::size(kLimits) ? kLimits[type]
                                                                          : Limit{nullptr, nullptr};
}

dg::Plug limitPlug(const MObject& object, const char* name, MStatus* status) {
  dg::Node* node = nodeOf(object);
  const dg::Plug plug = node && name ? node->plug(name) : dg::Plug();
  setStatus(status, plug.isNull() ? MStatus::kInvalidParameter : MStatus::kSuccess);
  return plug;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::edit;
using api::mathOf;
using api::readTransform;
using api::setStatus;

MObject MFnTransform::create(MObject parent, MStatus* status) {
  return create(MString("transform"), MString(), parent, status);
}
MTransformationMatrix MFnTransform::transformation(MStatus* status) const {
  return readTransform(object_, status).value_or(MTransformationMatrix());
}
MStatus MFnTransform::set(const MTransformationMatrix& transform) {
  return api::writeTransform(object_, transform);
}
MStatus MFnTransform::resetTransformation(const MMatrix& matrix) {
  return set(MTransformationMatrix(matrix));
}
MStatus MFnTransform::resetTransformation(const MTransformationMatrix& transform) {
  return set(transform);
}
// Rest positions belong to joints and retargeting, which this host doesn't have: there is none to
// go back to.
MStatus MFnTransform::resetFromRestPosition() {
  return MStatus::kFailure;
}
MStatus MFnTransform::clearRestPosition() {
  return MStatus::kSuccess;
}

MVector MFnTransform::getTranslation(MSpace::Space space, MStatus* status) const {
  const auto transform = readTransform(object_, status);
  if (!transform) return {};
  const MVector local = transform->getTranslation(MSpace::kTransform);
  if (space != MSpace::kWorld) return local;
  math::Matrix4 parent;
  const MStatus found = api::parentMatrix(path_, parent);
  setStatus(status, found.statusCode());
  return found ? api::vectorOf(math::transformPoint(mathOf(local), parent)) : local;
}
MStatus MFnTransform::setTranslation(const MVector& vector, MSpace::Space space) {
  MVector local = vector;
  if (space == MSpace::kWorld) {
    math::Matrix4 parent;
    const MStatus found = api::parentMatrix(path_, parent);
    if (!found) return found;
    local = api::vectorOf(
        math::transformPoint(mathOf(vector), api::mathOf(api::matrixOf(parent).inverse())));
  }
  return edit(object_, [&](MTransformationMatrix& t) {
    return t.setTranslation(local, MSpace::kTransform);
  });
}
MStatus MFnTransform::translateBy(const MVector& vector, MSpace::Space space) {
  if (space == MSpace::kWorld) {
    MStatus status;
    const MVector now = getTranslation(space, &status);
    return status ? setTranslation(now + vector, space) : status;
  }
  return edit(object_, [&](MTransformationMatrix& t) { return t.addTranslation(vector, space); });
}

MStatus MFnTransform::getRotation(MEulerRotation& rotation) const {
  MStatus status;
  if (const auto transform = readTransform(object_, &status)) rotation = transform->eulerRotation();
  return status;
}
MStatus MFnTransform::getRotation(MQuaternion& quaternion) const {
  return getRotation(quaternion, MSpace::kTransform);
}
MStatus MFnTransform::getRotation(MQuaternion& quaternion, MSpace::Space space) const {
  MStatus status;
  const auto transform = readTransform(object_, &status);
  if (!transform) return status;
  quaternion = transform->rotation();
  if (space != MSpace::kWorld) return status;
  math::Matrix4 parent;
  status = api::parentMatrix(path_, parent);
  if (status) quaternion = quaternion * api::quaternionOf(api::rotationOf(parent));
  return status;
}
MStatus MFnTransform::getRotation(double rotation[3],
                                  MTransformationMatrix::RotationOrder& order) const {
  MStatus status;
  const auto transform = readTransform(object_, &status);
  return transform ? transform->getRotation(rotation, order) : status;
}
MStatus MFnTransform::getRotation(double rotation[3], MTransformationMatrix::RotationOrder& order,
                                  MSpace::Space space) const {
  if (space != MSpace::kWorld) return getRotation(rotation, order);
  MQuaternion quaternion;
  const MStatus status = getRotation(quaternion, space);
  if (!status) return status;
  order = rotationOrder();
  const math::Vec3 angles = math::quaternionToEuler(mathOf(quaternion), api::mathOf(order));
  for (int axis = 0; axis < 3; ++axis) rotation[axis] = angles[axis];
  return status;
}
MStatus MFnTransform::setRotation(const MEulerRotation& rotation) {
  return edit(object_, [&](MTransformationMatrix& t) {
    const double angles[3] = {rotation.x, rotation.y, rotation.z};
    return t.setRotation(angles,
                         static_cast<MTransformationMatrix::RotationOrder>(rotation.order + 1));
  });
}
MStatus MFnTransform::setRotation(const MQuaternion& quaternion) {
  return edit(object_, [&](MTransformationMatrix& t) {
    t.rotateTo(quaternion);
    return MStatus::kSuccess;
  });
}
MStatus MFnTransform::setRotation(const MQuaternion& quaternion, MSpace::Space space) {
  if (space != MSpace::kWorld) return setRotation(quaternion);
  math::Matrix4 parent;
  const MStatus status = api::parentMatrix(path_, parent);
  return status ? setRotation(quaternion * api::quaternionOf(api::rotationOf(parent)).inverse())
                : status;
}
MStatus MFnTransform::setRotation(const double rotation[3],
                                  MTransformationMatrix::RotationOrder order) {
  return edit(object_, [&](MTransformationMatrix& t) { return t.setRotation(rotation, order); });
}
MStatus MFnTransform::setRotation(const double rotation[3],
                                  MTransformationMatrix::RotationOrder order, MSpace::Space space) {
  if (space != MSpace::kWorld) return setRotation(rotation, order);
  if (!api::isValidOrder(order)) return MStatus::kInvalidParameter;
  const math::Vec3 angles{rotation[0], rotation[1], rotation[2]};
  return setRotation(api::quaternionOf(math::eulerToQuaternion(angles, api::mathOf(order))), space);
}
MStatus MFnTransform::rotateBy(const MEulerRotation& rotation) {
  return rotateBy(rotation, MSpace::kTransform);
}
MStatus MFnTransform::rotateBy(const MEulerRotation& rotation, MSpace::Space space) {
  return rotateBy(rotation.asQuaternion(), space);
}
MStatus MFnTransform::rotateBy(const MQuaternion& quaternion, MSpace::Space space) {
  if (space == MSpace::kWorld) {
    MQuaternion now;
    const MStatus status = getRotation(now, space);
    return status ? setRotation(now * quaternion, space) : status;
  }
  return edit(object_, [&](MTransformationMatrix& t) {
    t.rotateBy(quaternion, space);
    return MStatus::kSuccess;
  });
}
MStatus MFnTransform::rotateBy(const double rotation[3], MTransformationMatrix::RotationOrder order,
                               MSpace::Space space) {
  if (!api::isValidOrder(order)) return MStatus::kInvalidParameter;
  const math::Vec3 angles{rotation[0], rotation[1], rotation[2]};
  return rotateBy(api::quaternionOf(math::eulerToQuaternion(angles, api::mathOf(order))), space);
}
MStatus MFnTransform::getRotationQuaternion(double& x, double& y, double& z, double& w) const {
  return getRotationQuaternion(x, y, z, w, MSpace::kTransform);
}
MStatus MFnTransform::getRotationQuaternion(double& x, double& y, double& z, double& w,
                                            MSpace::Space space) const {
  MQuaternion quaternion;
  const MStatus status = getRotation(quaternion, space);
  x = quaternion.x, y = quaternion.y, z = quaternion.z, w = quaternion.w;
  return status;
}
MStatus MFnTransform::setRotationQuaternion(double x, double y, double z, double w) {
  return setRotation(MQuaternion(x, y, z, w));
}
MStatus MFnTransform::setRotationQuaternion(double x, double y, double z, double w,
                                            MSpace::Space space) {
  return setRotation(MQuaternion(x, y, z, w), space);
}
MStatus MFnTransform::rotateByQuaternion(double x, double y, double z, double w,
                                         MSpace::Space space) {
  return rotateBy(MQuaternion(x, y, z, w), space);
}
MTransformationMatrix::RotationOrder MFnTransform::rotationOrder(MStatus* status) const {
  const auto transform = readTransform(object_, status);
  return transform ? transform->rotationOrder() : MTransformationMatrix::kInvalid;
}
MStatus MFnTransform::setRotationOrder(MTransformationMatrix::RotationOrder order, bool reorder) {
  return edit(object_, [&](MTransformationMatrix& t) {
    return reorder ? t.reorderRotation(order) : t.setRotationOrder(order);
  });
}
MQuaternion MFnTransform::rotateOrientation(MSpace::Space, MStatus* status) const {
  const auto transform = readTransform(object_, status);
  return transform ? transform->rotationOrientation() : MQuaternion();
}
MStatus MFnTransform::setRotateOrientation(const MQuaternion& quaternion, MSpace::Space,
                                           bool balance) {
  return edit(object_, [&](MTransformationMatrix& t) {
    // The axis is applied first: to leave the whole as it was, the rotation takes up the
    // difference.
    const MQuaternion whole = t.rotationOrientation() * t.rotation();
    const MStatus status = t.setRotationOrientation(quaternion);
    if (balance) t.rotateTo(quaternion.inverse() * whole);
    return status;
  });
}

#define HOST_TRIPLE(What)                                                         \
  MStatus MFnTransform::get##What(double values[3]) const {                       \
    MStatus status;                                                               \
    const auto transform = readTransform(object_, &status);                       \
    return transform ? transform->get##What(values, MSpace::kTransform) : status; \
  }                                                                               \
  MStatus MFnTransform::set##What(const double values[3]) {                       \
    return edit(object_, [&](MTransformationMatrix& t) {                          \
      return t.set##What(values, MSpace::kTransform);                             \
    });                                                                           \
  }
HOST_TRIPLE(Scale)
HOST_TRIPLE(Shear)
#undef HOST_TRIPLE
MStatus MFnTransform::scaleBy(const double scale[3]) {
  return edit(object_,
              [&](MTransformationMatrix& t) { return t.addScale(scale, MSpace::kTransform); });
}
MStatus MFnTransform::shearBy(const double shear[3]) {
  return edit(object_,
              [&](MTransformationMatrix& t) { return t.addShear(shear, MSpace::kTransform); });
}

#define HOST_PIVOT(get, set, isScalePivot)                                                         \
  MPoint MFnTransform::get(MSpace::Space space, MStatus* status) const {                           \
    const auto transform = readTransform(object_, status);                                         \
    if (!transform) return {};                                                                     \
    const MPoint local = transform->get(MSpace::kTransform);                                       \
    if (space != MSpace::kWorld) return local;                                                     \
    math::Matrix4 parent;                                                                          \
    const MStatus found = api::parentMatrix(path_, parent);                                        \
    setStatus(status, found.statusCode());                                                         \
    if (!found) return local;                                                                      \
    const auto above = api::pivotMatrix(api::TransformParts::of(*transform), isScalePivot);        \
    return api::pointOf(math::transformPoint(math::transformPoint(mathOf(local), above), parent)); \
  }                                                                                                \
  MStatus MFnTransform::set(const MPoint& point, MSpace::Space space, bool balance) {              \
    return edit(object_, [&](MTransformationMatrix& t) {                                           \
      MPoint local = point;                                                                        \
      if (space == MSpace::kWorld) {                                                               \
        math::Matrix4 parent;                                                                      \
        const MStatus found = api::parentMatrix(path_, parent);                                    \
        if (!found) return found;                                                                  \
        const auto above = api::pivotMatrix(api::TransformParts::of(t), isScalePivot);             \
        local = point * api::matrixOf(above * parent).inverse();                                   \
      }                                                                                            \
      return t.set(local, MSpace::kTransform, balance);                                            \
    });                                                                                            \
  }                                                                                                \
  MVector MFnTransform::get##Translation(MSpace::Space, MStatus* status) const {                   \
    const auto transform = readTransform(object_, status);                                         \
    return transform ? transform->get##Translation(MSpace::kTransform) : MVector();                \
  }                                                                                                \
  MStatus MFnTransform::set##Translation(const MVector& vector, MSpace::Space) {                   \
    return edit(object_, [&](MTransformationMatrix& t) {                                           \
      return t.set##Translation(vector, MSpace::kTransform);                                       \
    });                                                                                            \
  }
HOST_PIVOT(scalePivot, setScalePivot, true)
HOST_PIVOT(rotatePivot, setRotatePivot, false)
#undef HOST_PIVOT

bool MFnTransform::isLimited(LimitType type, MStatus* status) const {
  const dg::Plug plug = api::limitPlug(object_, api::limitOf(type).enable, status);
  return plug && api::wrap(plug).asBool(status);
}
double MFnTransform::limitValue(LimitType type, MStatus* status) const {
  const dg::Plug plug = api::limitPlug(object_, api::limitOf(type).attribute, status);
  return plug ? api::wrap(plug).asDouble(status) : 0.0;
}
MStatus MFnTransform::setLimit(LimitType type, double value) {
  MStatus status;
  const dg::Plug plug = api::limitPlug(object_, api::limitOf(type).attribute, &status);
  return plug ? api::wrap(plug).setDouble(value) : status;
}
MStatus MFnTransform::enableLimit(LimitType type, bool flag) {
  MStatus status;
  const dg::Plug plug = api::limitPlug(object_, api::limitOf(type).enable, &status);
  return plug ? api::wrap(plug).setBool(flag) : status;
}
