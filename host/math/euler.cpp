#include "host/math/euler.h"

#include "host/math/tolerance.h"

namespace host::math {

namespace {

Quaternion aboutAxis(int axis, double radians) {
  Vec3 direction;
  direction[axis] = 1;
  return axisAngle(direction, radians);
}

Vec3 nearestTurns(Vec3 radians, const Vec3& reference) {
  for (int i = 0; i < 3; ++i)
    radians[i] += 2 * kPi * std::round((reference[i] - radians[i]) / (2 * kPi));
  return radians;
}

}  // namespace

RotateOrderAxes axesOf(RotateOrder order) {
  switch (order) {
    case RotateOrder::YZX:
      return {1, 2, 0, 1};
    case RotateOrder::ZXY:
      return {2, 0, 1, 1};
    case RotateOrder::XZY:
      return {0, 2, 1, -1};
    case RotateOrder::YXZ:
      return {1, 0, 2, -1};
    case RotateOrder::ZYX:
      return {2, 1, 0, -1};
    case RotateOrder::XYZ:
      break;
  }
  return {0, 1, 2, 1};
}

Matrix4 eulerToMatrix(const Vec3& radians, RotateOrder order) {
  const auto [i, j, k, sign] = axesOf(order);
  const double ci = std::cos(radians[i]), si = sign * std::sin(radians[i]);
  const double cj = std::cos(radians[j]), sj = sign * std::sin(radians[j]);
  const double ck = std::cos(radians[k]), sk = sign * std::sin(radians[k]);
  Matrix4 r;
  r[i][i] = cj * ck;
  r[i][j] = cj * sk;
  r[i][k] = -sj;
  r[j][i] = si * sj * ck - ci * sk;
  r[j][j] = si * sj * sk + ci * ck;
  r[j][k] = si * cj;
  r[k][i] = ci * sj * ck + si * sk;
  r[k][j] = ci * sj * sk - si * ck;
  r[k][k] = ci * cj;
  return r;
}

Quaternion eulerToQuaternion(const Vec3& radians, RotateOrder order) {
  const auto [i, j, k, sign] = axesOf(order);
  return aboutAxis(i, radians[i]) * aboutAxis(j, radians[j]) * aboutAxis(k, radians[k]);
}

Vec3 matrixToEuler(const Matrix4& m, RotateOrder order) {
  const auto [i, j, k, sign] = axesOf(order);
  Vec3 angles;
  const double cosine = std::hypot(m[i][i], m[i][j]);
  angles[j] = std::atan2(-sign * m[i][k], cosine);
  if (cosine > 1e-8) {
    angles[i] = std::atan2(sign * m[j][k], m[k][k]);
    angles[k] = std::atan2(sign * m[i][j], m[i][i]);
  } else {
    angles[i] = std::atan2(-sign * m[k][j], m[j][j]);
  }
  return angles;
}

Vec3 quaternionToEuler(const Quaternion& q, RotateOrder order) {
  return matrixToEuler(toMatrix(q), order);
}

Vec3 reorderEuler(const Vec3& radians, RotateOrder from, RotateOrder to) {
  return from == to ? radians : matrixToEuler(eulerToMatrix(radians, from), to);
}

Vec3 closestEuler(const Vec3& radians, RotateOrder order, const Vec3& reference) {
  const auto [i, j, k, sign] = axesOf(order);
  Vec3 flipped = radians;
  flipped[i] += kPi;
  flipped[j] = kPi - flipped[j];
  flipped[k] += kPi;
  const Vec3 a = nearestTurns(radians, reference), b = nearestTurns(flipped, reference);
  return lengthSquared(a - reference) <= lengthSquared(b - reference) ? a : b;
}

}  // namespace host::math
