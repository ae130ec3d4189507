#pragma once

#include "host/math/matrix4.h"

namespace host::math {

/// A right-handed orthonormal frame.
struct Frame {
  Vec3 origin;
  Vec3 x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};

  /// World to frame coordinates.
  [[nodiscard]] Vec3 toLocal(const Vec3& p) const {
    const Vec3 d = p - origin;
    return {dot(d, x), dot(d, y), dot(d, z)};
  }
  /// Frame to world coordinates.
  [[nodiscard]] Vec3 toWorld(const Vec3& p) const { return origin + x * p.x + y * p.y + z * p.z; }
  /// The matrix that takes frame coordinates to world ones.
  [[nodiscard]] Matrix4 matrix() const;
};

/// A unit vector perpendicular to `v`, chosen from v alone; (1,0,0) for the zero vector.
[[nodiscard]] Vec3 anyPerpendicular(const Vec3& v);

/// Makes a frame whose z is along `normal` and whose x is as near to `xHint` as it can be; a hint
/// that is parallel to the normal (or zero) is replaced by any perpendicular. A zero normal counts
/// as (0,0,1).
[[nodiscard]] Frame frameFromNormal(const Vec3& origin, const Vec3& normal, const Vec3& xHint = {});

}  // namespace host::math
