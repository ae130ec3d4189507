#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct ConnectResult {
  std::vector<EdgeId> edges;  ///< new edges across faces, ascending
  std::vector<VertexId>
      vertices;  ///< new vertices in the middle of listed edges, in ascending order of the edges
};

/// Connects listed vertices and the middles of listed edges across the faces that they share.
///
/// In each face the points follow each other around the loop: two are joined by an edge, of more
/// each is joined to the next one. Points that have an edge between them already stay as they are.
/// An edge of which no face has another point is still divided in its middle. Cut edges keep
/// smoothness and crease on both pieces, the first piece their id; new edges are smooth. A face's
/// first piece keeps its id, others follow the old faces, face by face. UVs and colours are
/// interpolated along the edges on each side, so seams stay seams. Linear in the mesh.
/// @return an error for a bad id, with `mesh` untouched.
[[nodiscard]] Result<ConnectResult> connectComponents(Mesh& mesh,
                                                      std::span<const VertexId> vertices,
                                                      std::span<const EdgeId> edges);

}  // namespace host::ops
