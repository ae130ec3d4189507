#pragma once

#include <optional>

#include "host/math/ray.h"
#include "host/math/vec.h"

namespace host::math {

/// The points p with dot(normal, p) = offset; the normal has unit length.
struct Plane {
  Vec3 normal{0, 1, 0};
  double offset = 0;

  Plane() = default;
  /// Through a point, perpendicular to a direction of any length.
  Plane(const Vec3& point, const Vec3& direction)
      : normal(normalized(direction)), offset(dot(normal, point)) {}

  [[nodiscard]] double signedDistance(const Vec3& p) const { return dot(normal, p) - offset; }
  [[nodiscard]] Vec3 project(const Vec3& p) const { return p - normal * signedDistance(p); }
  [[nodiscard]] Vec3 mirror(const Vec3& p) const { return p - normal * (2 * signedDistance(p)); }
};

/// The parameter at which a ray's line meets a plane (negative behind the origin); nothing when
/// they are parallel.
[[nodiscard]] inline std::optional<double> intersect(const Ray& ray, const Plane& plane) {
  const double along = dot(plane.normal, ray.direction);
  if (std::abs(along) <= 1e-14 * length(ray.direction)) return {};
  return -plane.signedDistance(ray.origin) / along;
}

}  // namespace host::math
