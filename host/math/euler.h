#pragma once

#include "host/math/matrix4.h"
#include "host/math/quaternion.h"

namespace host::math {

/// The order in which the three rotations are applied; values as the rotateOrder attribute stores
/// them.
enum class RotateOrder { XYZ, YZX, ZXY, XZY, YXZ, ZYX };

/// The axes 0..2 of an order, first applied first, and +1 for the cyclic orders, -1 for the others.
struct RotateOrderAxes {
  int first, second, third;
  double sign;
};
[[nodiscard]] RotateOrderAxes axesOf(RotateOrder order);

/// Makes the rotation by `radians.x` about x, `.y` about y, `.z` about z in the given order.
[[nodiscard]] Matrix4 eulerToMatrix(const Vec3& radians, RotateOrder order = RotateOrder::XYZ);
[[nodiscard]] Quaternion eulerToQuaternion(const Vec3& radians,
                                           RotateOrder order = RotateOrder::XYZ);

/// Finds the angles of a pure rotation; the second axis' angle is in [-pi/2, pi/2]. At gimbal lock
/// the last axis' angle is 0.
[[nodiscard]] Vec3 matrixToEuler(const Matrix4& rotation, RotateOrder order = RotateOrder::XYZ);
[[nodiscard]] Vec3 quaternionToEuler(const Quaternion& q, RotateOrder order = RotateOrder::XYZ);

/// The same rotation written in another order.
[[nodiscard]] Vec3 reorderEuler(const Vec3& radians, RotateOrder from, RotateOrder to);

/// Of all triples for the same rotation, picks the one nearest to `reference`, whole turns
/// included: what keeps an animated or dragged rotation from jumping.
[[nodiscard]] Vec3 closestEuler(const Vec3& radians, RotateOrder order, const Vec3& reference);

}  // namespace host::math
