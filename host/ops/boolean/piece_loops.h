#pragma once

#include <array>
#include <vector>

#include "host/ops/boolean/exact_points.h"

namespace host::ops {

/// Joins triangles of one face to as few polygons as simple loops allow: each part without holes
/// becomes one, a part with holes several, divided along short edges. Triangles join where they
/// walk an edge in opposite directions. Loops keep the triangles' direction; points inside go.
[[nodiscard]] std::vector<std::vector<PointId>> joinPieces(
    const ExactPoints& points, const std::vector<std::array<PointId, 3>>& triangles);

}  // namespace host::ops
