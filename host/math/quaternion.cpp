#include "host/math/quaternion.h"

#include <algorithm>
#include <cmath>

#include "host/math/frame.h"
#include "host/math/tolerance.h"

namespace host::math {

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
  // Rotating by a and then b is b times a in Hamilton's algebra.
  return {
      b.w * a.x + b.x * a.w + b.y * a.z - b.z * a.y, b.w * a.y - b.x * a.z + b.y * a.w + b.z * a.x,
      b.w * a.z + b.x * a.y - b.y * a.x + b.z * a.w, b.w * a.w - b.x * a.x - b.y * a.y - b.z * a.z};
}

Quaternion conjugate(const Quaternion& q) {
  return {-q.x, -q.y, -q.z, q.w};
}

double dot(const Quaternion& a, const Quaternion& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

Quaternion normalized(const Quaternion& q) {
  const double l = std::sqrt(dot(q, q));
  return l > 0 ? Quaternion{q.x / l, q.y / l, q.z / l, q.w / l} : Quaternion{};
}

Quaternion axisAngle(const Vec3& axis, double radians) {
  const double l = length(axis);
  if (!(l > 0)) return {};
  const Vec3 v = axis * (std::sin(radians / 2) / l);
  return {v.x, v.y, v.z, std::cos(radians / 2)};
}

Quaternion rotationBetween(const Vec3& a, const Vec3& b) {
  const Vec3 from = normalized(a), to = normalized(b);
  const double cosine = dot(from, to);
  if (cosine < -1 + 1e-14) return axisAngle(anyPerpendicular(from), kPi);
  const Vec3 axis = cross(from, to);
  return normalized(Quaternion{axis.x, axis.y, axis.z, 1 + cosine});
}

Quaternion toQuaternion(const Matrix4& m) {
  // Shepperd 1978: divide by the largest component, so that no case loses digits.
  const double trace = m[0][0] + m[1][1] + m[2][2];
  Quaternion q;
  if (trace >= std::max({m[0][0], m[1][1], m[2][2]})) {
    q = {m[1][2] - m[2][1], m[2][0] - m[0][2], m[0][1] - m[1][0], 1 + trace};
  } else if (m[0][0] >= m[1][1] && m[0][0] >= m[2][2]) {
    q = {1 + m[0][0] - m[1][1] - m[2][2], m[0][1] + m[1][0], m[0][2] + m[2][0], m[1][2] - m[2][1]};
  } else if (m[1][1] >= m[2][2]) {
    q = {m[0][1] + m[1][0], 1 - m[0][0] + m[1][1] - m[2][2], m[1][2] + m[2][1], m[2][0] - m[0][2]};
  } else {
    q = {m[0][2] + m[2][0], m[1][2] + m[2][1], 1 - m[0][0] - m[1][1] + m[2][2], m[0][1] - m[1][0]};
  }
  q = normalized(q);
  return q.w < 0 ? Quaternion{-q.x, -q.y, -q.z, -q.w} : q;
}

Matrix4 toMatrix(const Quaternion& q) {
  Matrix4 r;
  r[0][0] = 1 - 2 * (q.y * q.y + q.z * q.z);
  r[0][1] = 2 * (q.x * q.y + q.w * q.z);
  r[0][2] = 2 * (q.x * q.z - q.w * q.y);
  r[1][0] = 2 * (q.x * q.y - q.w * q.z);
  r[1][1] = 1 - 2 * (q.x * q.x + q.z * q.z);
  r[1][2] = 2 * (q.y * q.z + q.w * q.x);
  r[2][0] = 2 * (q.x * q.z + q.w * q.y);
  r[2][1] = 2 * (q.y * q.z - q.w * q.x);
  r[2][2] = 1 - 2 * (q.x * q.x + q.y * q.y);
  return r;
}

Vec3 rotate(const Vec3& v, const Quaternion& q) {
  const Vec3 axis{q.x, q.y, q.z};
  const Vec3 t = cross(axis, v) * 2.0;
  return v + t * q.w + cross(axis, t);
}

Quaternion slerp(const Quaternion& a, const Quaternion& b, double t) {
  double cosine = dot(a, b);
  const double side = cosine < 0 ? -1 : 1;
  cosine *= side;
  double fromA = 1 - t, fromB = t;
  if (cosine < 1 - 1e-10) {
    const double angle = std::acos(std::min(cosine, 1.0));
    fromA = std::sin((1 - t) * angle) / std::sin(angle);
    fromB = std::sin(t * angle) / std::sin(angle);
  }
  fromB *= side;
  return normalized(Quaternion{a.x * fromA + b.x * fromB, a.y * fromA + b.y * fromB,
                               a.z * fromA + b.z * fromB, a.w * fromA + b.w * fromB});
}

}  // namespace host::math
