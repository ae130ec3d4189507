#pragma once

#include "host/math/matrix4.h"

namespace host::math {

/// A rotation as x, y, z (axis times sine of half the angle) and w (cosine of half the angle).
///
/// Products follow the matrices: a * b rotates by a first.
struct Quaternion {
  double x = 0, y = 0, z = 0, w = 1;
  friend bool operator==(const Quaternion&, const Quaternion&) = default;
};

[[nodiscard]] Quaternion operator*(const Quaternion& a, const Quaternion& b);
[[nodiscard]] Quaternion conjugate(const Quaternion& q);
[[nodiscard]] double dot(const Quaternion& a, const Quaternion& b);
/// Scales to unit length; the zero quaternion becomes the identity.
[[nodiscard]] Quaternion normalized(const Quaternion& q);

/// The rotation by an angle about a direction of any length; the identity for the zero direction.
[[nodiscard]] Quaternion axisAngle(const Vec3& axis, double radians);
/// The shortest rotation that takes direction a to direction b; opposite directions turn about any
/// perpendicular axis.
[[nodiscard]] Quaternion rotationBetween(const Vec3& a, const Vec3& b);
/// The rotation of a pure rotation matrix (orthonormal, positive determinant), w >= 0.
[[nodiscard]] Quaternion toQuaternion(const Matrix4& rotation);
[[nodiscard]] Matrix4 toMatrix(const Quaternion& unit);
[[nodiscard]] Vec3 rotate(const Vec3& v, const Quaternion& unit);

/// Interpolates along the shorter arc at constant speed; t = 0 gives a, t = 1 gives b (or -b, the
/// same rotation).
[[nodiscard]] Quaternion slerp(const Quaternion& a, const Quaternion& b, double t);

}  // namespace host::math
