#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SubdivideEdgesResult {
  std::vector<VertexId> vertices;  ///< new ones, edge by edge in ascending order, from an edge's
                                   ///< first vertex to its second
  std::vector<EdgeId> edges;       ///< all pieces of the listed edges, ascending
};

/// Divides edges evenly by `divisions` new vertices each.
///
/// New vertices follow the old ones. The piece at an edge's first vertex keeps the edge's id, the
/// others follow the old edges; all keep its smoothness and crease. Faces get more corners and keep
/// their ids; UVs and colours are interpolated along the edge on each side, so seams stay seams.
/// Linear in the mesh.
/// @return an error for a bad id or fewer than one division, with `mesh` untouched.
[[nodiscard]] Result<SubdivideEdgesResult> subdivideEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                          int divisions = 1);

}  // namespace host::ops
