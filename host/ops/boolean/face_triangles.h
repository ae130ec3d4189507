#pragma once

#include <vector>

#include "host/mesh/triangulate.h"
#include "host/ops/boolean/exact_points.h"

namespace host::ops {

/// The triangles of a face, as positions in its loop: those it is drawn with where none of them is
/// flat or turned over, seen along the axis that its plane lies across most; else ears that are cut
/// exactly, so that vertices on a straight line make no flat triangles. A loop that crosses itself
/// or has no area keeps the drawn ones. Always two less than corners.
[[nodiscard]] std::vector<mesh::LoopTriangle> exactTriangles(const ExactPoints& points,
                                                             const mesh::Mesh& mesh, FaceId face);

}  // namespace host::ops
