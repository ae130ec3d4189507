#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct DetachResult {
  std::vector<VertexId> vertices;  ///< those that were given away, and the new ones, ascending
};

/// Parts a mesh along edges: at each vertex, faces that only meet across listed edges get vertices
/// of their own.
///
/// The faces around the lowest corner keep the vertex; the others get new ones behind the old,
/// vertex by vertex, in the order of their lowest corners. An edge that comes to stand twice keeps
/// its id on the side of the kept vertices; both take its smoothness and crease. Corners keep their
/// UVs, colours and locked normals. A listed edge that no vertex can be parted at stays whole.
/// Linear.
/// @return an error for a bad id, with `mesh` untouched
[[nodiscard]] Result<DetachResult> detachEdges(Mesh& mesh, std::span<const EdgeId> edges);

/// Gives every face at the listed vertices a vertex of its own there; as detachEdges() with all
/// edges of the vertices, but at the vertices only.
[[nodiscard]] Result<DetachResult> detachVertices(Mesh& mesh, std::span<const VertexId> vertices);

}  // namespace host::ops
