#pragma once

#include <maya/MEulerRotation.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MQuaternion.h>
#include <maya/MVector.h>

#include <algorithm>

#include "host/math/euler.h"
#include "host/math/matrix4.h"
#include "host/math/quaternion.h"
#include "host/math/vec.h"

namespace host::api {

/// The engine's form of an API value, and back.
[[nodiscard]] inline math::Vec3 mathOf(const MVector& v) {
  return {v.x, v.y, v.z};
}
[[nodiscard]] inline MVector vectorOf(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}
/// The Cartesian point: w divides, unless it is zero.
[[nodiscard]] inline math::Vec3 mathOf(const MPoint& p) {
  const double s = p.w != 0.0 && p.w != 1.0 ? 1.0 / p.w : 1.0;
  return {p.x * s, p.y * s, p.z * s};
}
[[nodiscard]] inline MPoint pointOf(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}
[[nodiscard]] inline math::Quaternion mathOf(const MQuaternion& q) {
  return {q.x, q.y, q.z, q.w};
}
[[nodiscard]] inline MQuaternion quaternionOf(const math::Quaternion& q) {
  return {q.x, q.y, q.z, q.w};
}
[[nodiscard]] inline math::Matrix4 mathOf(const MMatrix& m) {
  math::Matrix4 out;
  std::copy_n(&m.matrix[0][0], 16, &out.m[0][0]);
  return out;
}
[[nodiscard]] inline MMatrix matrixOf(const math::Matrix4& m) {
  return MMatrix(m.m);
}
/// Both enumerations list the orders alike.
[[nodiscard]] inline math::RotateOrder mathOf(MEulerRotation::RotationOrder order) {
  return static_cast<math::RotateOrder>(order);
}
[[nodiscard]] inline math::Vec3 anglesOf(const MEulerRotation& e) {
  return {e.x, e.y, e.z};
}
[[nodiscard]] inline MEulerRotation eulerOf(const math::Vec3& angles,
                                            MEulerRotation::RotationOrder order) {
  return {angles.x, angles.y, angles.z, order};
}

}  // namespace host::api
