#pragma once

#include <numbers>
#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct BridgeEdgesOptions {
  int divisions = 0;  ///< rows of vertices between the two sides
  double taper = 1;   ///< size of the middle, about its own centre; with divisions
  double twist = 0;   ///< turn of the middle about the bridge's axis, radians; with divisions
  int shift = 0;      ///< between closed sides: how many vertices further the other side is met
  VertexId start = kNone, target = kNone;  ///< between closed sides: two vertices that are joined;
                                           ///< by default those that keep the bridge shortest
  double smoothingAngle = std::numbers::pi / 6;  ///< new edges are hard beyond it, radians
};

struct BridgeEdgesResult {
  std::vector<FaceId> faces;       ///< new quads (triangles where sides share a vertex), in order
  std::vector<VertexId> vertices;  ///< new ones, row by row
};

/// Joins two runs of border edges by a strip of quads.
///
/// The listed edges make up two open or two closed runs of equal length. The first run is the one
/// with the lowest edge. New faces are wound like those at the runs. Components keep their ids, new
/// ones follow. Quads take UVs and colours blended from one side to the other; where a side has
/// none, of the other one. New edges are smooth or hard by the angle and not creased; the edges of
/// the runs keep what they have. Linear in the mesh.
/// @return an error for a bad id or number, an edge that is no border edge, and edges that do not
/// make up two runs of one length, with `mesh` untouched.
[[nodiscard]] Result<BridgeEdgesResult> bridgeEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                    const BridgeEdgesOptions& options = {});

}  // namespace host::ops
