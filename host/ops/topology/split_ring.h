#pragma once

#include <numbers>
#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SplitRingOptions {
  enum class Spacing {
    Absolute,  ///< `weight` is a length, in object space, cm, no longer than the edge
    Relative,  ///< `weight` is a fraction of each edge
    Even       ///< `divisions` loops at equal distances; `weight` is not used
  };
  Spacing spacing = Spacing::Relative;
  double weight = 0.5;      ///< where a single loop goes, from the first end of the root edge
  int divisions = 1;        ///< loops, with even spacing
  EdgeId rootEdge = kNone;  ///< the edge that tells which ends are first; kNone: the lowest listed
  bool isReversed = false;  ///< measure from the other end
  double smoothingAngle = std::numbers::pi / 6;  ///< new edges are hard beyond it, radians
  bool fixQuads = false;  ///< where a loop ends at a triangle, lead it to the opposite corner
};

struct SplitRingResult {
  std::vector<EdgeId> edges;       ///< new edges across faces, ascending
  std::vector<VertexId> vertices;  ///< new vertices, edge by edge in the order of the walk
};

/// Inserts edge loops across a ring of edges.
///
/// The listed edges are divided, and in each face neighbouring divided edges are joined division by
/// division. The ends of all edges are matched from the root edge on across the faces that join
/// them; edges that no face joins to it are matched from their lowest edge. A face with one
/// divided edge gets more corners. Corner data are those of connectComponents(): pieces of an edge
/// keep smoothness and crease, UVs and colours are interpolated on each side, so seams stay seams.
///
/// Numbering: the ring is walked from the root edge, first through the lower of its faces, then
/// through the other; what it does not reach is walked from its lowest edge. New vertices follow
/// the old ones in that order, and new edges the old ones: for each edge its far pieces, then the
/// edges that lead to it from the one before; the edge that closes the ring is last. Files of the
/// original format name edges by this numbering. A face's first piece keeps its id, the others
/// follow the old faces, face by face. Linear in the mesh.
/// @return an error for a bad id or number, with `mesh` untouched.
[[nodiscard]] Result<SplitRingResult> splitRing(Mesh& mesh, std::span<const EdgeId> edges,
                                                const SplitRingOptions& options = {});

}  // namespace host::ops
