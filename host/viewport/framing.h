#pragma once

#include <span>

#include "host/viewport/camera.h"

namespace host::viewport {

/// Half the width and height, measured as viewExtents() does, of the smallest picture about the
/// line of sight that shows all points before the eye. Points that are not finite are ignored.
[[nodiscard]] ViewExtents extentsOf(const Camera& camera, std::span<const Vec3> points);

/// Changes the lens, or the width of an orthographic view, so that a port of that aspect just
/// shows these extents. Extents of nothing leave the camera as it is.
void zoomTo(Camera& camera, double aspect, const ViewExtents& shown);

}  // namespace host::viewport
