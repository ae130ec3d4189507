#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::ops {

struct ExtrudeEdgesOptions : ExtrudePlacement {
  bool keepEdgesTogether =
      true;  ///< edges that share a vertex move as one region; otherwise each edge by itself
};

struct ExtrudeEdgesResult {
  std::vector<EdgeId> edges;       ///< copies of the listed edges, in the order of the walk
  std::vector<FaceId> faces;       ///< new quads, edge by edge, from the old edge outwards
  std::vector<VertexId> vertices;  ///< new ones
};

/// Extrudes edges: copies of them move, and quads join them to where they were.
///
/// All old components keep their ids. The listed edges are walked from the lowest on along what
/// they share vertices with, first on from its far end, then back from its near one, then from the
/// lowest edge that is left. New vertices follow the old ones in that order; with more divisions
/// the rows between follow, from the old edge outwards. New edges follow the old ones in that order
/// too: for each edge its spokes that are not there yet, then its copy. Files of the original
/// format name edges by this numbering. A quad is wound like the one face at a border edge; at
/// edges with more faces the result is not manifold, wound like the first of them. The region's
/// frame has z along the mean normal of the faces at its edges and its origin at the centre of
/// their vertices; offset moves away from the faces of border edges within their planes. Quads take
/// UVs and colours of the face whose edge they stand on, without area in UV space; their edges are
/// hard or smooth by the smoothing angle, the old edge keeps its crease. Linear in the mesh.
/// @return what was made, or an error for a bad id or number or a space without inverse, with
/// `mesh` untouched.
[[nodiscard]] Result<ExtrudeEdgesResult> extrudeEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                      const ExtrudeEdgesOptions& options = {});

}  // namespace host::ops
