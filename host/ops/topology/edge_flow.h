#pragma once

#include <span>

#include "host/mesh/mesh.h"

namespace host::ops {

/// Moves the vertices of edges so that the surface across them follows the curvature around.
///
/// At each vertex of a listed edge that has exactly one edge to either side of the listed ones, a
/// cubic goes through the next two points of either side; the vertex comes to stand on it, between
/// its neighbours as far along as it was. Where there is no second point, the curve ends straight.
/// Vertices with other surroundings stay. All are moved from where they were before. Linear in the
/// edges.
/// @param amount 1 onto the curve, 0 onto the straight line between the neighbours, -1 mirrored
/// @return the vertices that have moved, ascending, or an error for a bad id, with `mesh` untouched
[[nodiscard]] Result<std::vector<VertexId>> editEdgeFlow(mesh::Mesh& mesh,
                                                         std::span<const EdgeId> edges,
                                                         double amount);

}  // namespace host::ops
