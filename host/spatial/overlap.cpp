#include "host/spatial/overlap.h"

#include <algorithm>
#include <cmath>

namespace host::spatial {

using math::Vec3;

bool overlaps(const math::Box& box, const Vec3& aIn, const Vec3& bIn, const Vec3& cIn) {
  const Vec3 center = box.center(), half = box.size() * 0.5;
  const Vec3 a = aIn - center, b = bIn - center, c = cIn - center;
  const auto isSeparatedBy = [&](const Vec3& axis) {
    const double reach =
        half.x * std::abs(axis.x) + half.y * std::abs(axis.y) + half.z * std::abs(axis.z);
    const double pa = dot(a, axis), pb = dot(b, axis), pc = dot(c, axis);
    // Rounding must not part what touches.
    const double slack = 1e-12 * (reach + std::max({std::abs(pa), std::abs(pb), std::abs(pc)}));
    return std::min({pa, pb, pc}) > reach + slack || std::max({pa, pb, pc}) < -reach - slack;
  };
  const Vec3 axes[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const Vec3 edges[3] = {b - a, c - b, a - c};
  for (const Vec3& axis : axes)
    if (isSeparatedBy(axis)) return false;
  if (isSeparatedBy(cross(edges[0], edges[1]))) return false;
  for (const Vec3& axis : axes)
    for (const Vec3& edge : edges)
      if (isSeparatedBy(cross(axis, edge))) return false;
  return true;
}

}  // namespace host::spatial
