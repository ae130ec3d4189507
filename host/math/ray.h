#pragma once

#include <limits>
#include <optional>

#include "host/math/box.h"
#include "host/math/vec.h"

namespace host::math {

/// Points origin + t * direction; the direction need not be of unit length, t counts in its
/// lengths.
struct Ray {
  Vec3 origin;
  Vec3 direction{0, 0, -1};
  [[nodiscard]] Vec3 at(double t) const { return origin + direction * t; }
};

/// The range of t in which the ray's line is inside the box; nothing when it misses. Zero direction
/// components are fine.
struct RayRange {
  double near, far;
};
[[nodiscard]] std::optional<RayRange> intersect(const Ray& ray, const Box& box);

/// Where a ray meets a triangle: point = (1-u-v) a + u b + v c.
struct RayTriangleHit {
  double t, u, v;
};
/// Intersects the ray's line with a triangle, either side, edges and corners included. Rays through
/// a shared edge hit at least one of its triangles (Woop, Benthin and Wald 2013). Nothing for
/// triangles without area as seen along the ray, for a zero direction and for NaN.
[[nodiscard]] std::optional<RayTriangleHit> intersectTriangle(const Ray& ray, const Vec3& a,
                                                              const Vec3& b, const Vec3& c);

/// The parameter of the point on the ray's line nearest to p.
[[nodiscard]] double closestParameter(const Ray& line, const Vec3& p);
/// The parameter of the point on segment ab nearest to p, 0 to 1.
[[nodiscard]] double closestOnSegment(const Vec3& a, const Vec3& b, const Vec3& p);
/// The point of a triangle nearest to p, as weights: (1-u-v) a + u b + v c. Degenerate triangles
/// act as their longest edge or as their point.
struct TrianglePoint {
  double u, v;
};
[[nodiscard]] TrianglePoint closestOnTriangle(const Vec3& a, const Vec3& b, const Vec3& c,
                                              const Vec3& p);

}  // namespace host::math
