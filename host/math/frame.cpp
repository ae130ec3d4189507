#include "host/math/frame.h"

#include "host/math/tolerance.h"

namespace host::math {

Matrix4 Frame::matrix() const {
  Matrix4 r;
  const Vec3 rows[4] = {x, y, z, origin};
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 3; ++j) r[i][j] = rows[i][j];
  return r;
}

Vec3 anyPerpendicular(const Vec3& v) {
  // Crossing with the axis of the smallest component keeps the product well away from zero.
  const double ax = std::abs(v.x), ay = std::abs(v.y), az = std::abs(v.z);
  const Vec3 axis = ax <= ay && ax <= az ? Vec3{1, 0, 0} : ay <= az ? Vec3{0, 1, 0} : Vec3{0, 0, 1};
  const Vec3 p = cross(normalized(v), axis);
  return lengthSquared(p) > 0 ? normalized(p) : Vec3{1, 0, 0};
}

Frame frameFromNormal(const Vec3& origin, const Vec3& normal, const Vec3& xHint) {
  Frame frame;
  frame.origin = origin;
  const Vec3 z = normalized(normal);
  if (lengthSquared(z) > 0) frame.z = z;
  const Vec3 x = xHint - frame.z * dot(xHint, frame.z);
  const bool isUsable = length(x) > kAngleTolerance * length(xHint);
  frame.x = isUsable ? normalized(x) : anyPerpendicular(frame.z);
  frame.y = cross(frame.z, frame.x);
  return frame;
}

}  // namespace host::math
