#pragma once

#include "host/ops/uv/unfold_hierarchy.h"

namespace host::ops::flat {

/// Lays the coarsest version out in a circle: its longest border is the circle, other borders are
/// closed by one point each, every other vertex is the mean of its neighbours (Tutte 1963).
/// @return positions of the vertices in it, others 0; empty when some triangle is not positive
[[nodiscard]] std::vector<Point> circleLayout(const Hierarchy& coarsest,
                                              std::span<const math::Vec3> points);

/// Finds a place for a vertex that was just put back, so that all its triangles are positive and
/// its border edges touch no others.
/// @return false when rounding leaves none
bool placeBack(const Hierarchy& hierarchy, const Collapse& collapse,
               std::span<const math::Vec3> points, const BorderGuard& guard, std::vector<Point>& x);

}  // namespace host::ops::flat
