#include "host/viewport/framing.h"

#include <algorithm>
#include <cmath>

namespace host::viewport {

ViewExtents extentsOf(const Camera& camera, std::span<const Vec3> points) {
  const Vec3 right = camera.right(), up = camera.up(), along = camera.viewDirection();
  const Vec3 eye = camera.eye();
  ViewExtents extents{0, 0};
  for (const Vec3& point : points) {
    const Vec3 p = point - eye;
    const double depth = camera.orthographic ? 1 : math::dot(p, along);
    if (!math::isFinite(point) || !(depth > 0)) continue;
    extents.halfWidth = std::max(extents.halfWidth, std::abs(math::dot(p, right)) / depth);
    extents.halfHeight = std::max(extents.halfHeight, std::abs(math::dot(p, up)) / depth);
  }
  return extents;
}

void zoomTo(Camera& camera, double aspect, const ViewExtents& shown) {
  const ViewExtents now = viewExtents(camera, aspect);
  const double factor =
      std::max(shown.halfWidth / now.halfWidth, shown.halfHeight / now.halfHeight);
  constexpr double kLeastFactor = 1e-9;
  if (!(factor > kLeastFactor) || !std::isfinite(factor)) return;
  if (camera.orthographic)
    camera.orthographicWidth *= factor;
  else
    camera.focalLength /= factor;
}

}  // namespace host::viewport
