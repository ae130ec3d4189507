#pragma once

#include <span>

#include "host/mesh/mesh.h"

namespace host::ops {

struct SewUvsOptions {
  bool moves = false;         ///< lay the smaller shell against the larger one first
  Index pieceFaceLimit = -1;  ///< when it moves: shells of more faces stay apart; -1: no limit
};

struct SewUvsResult {
  Index sewn = 0;  ///< borders of the map that were asked for and are closed now
  Index open = 0;  ///< those that stay open: lest a shell could not lie flat, but for the next two
  Index limited = 0;     ///< of these, between shells of more faces than may move
  Index unjoinable = 0;  ///< of these, where more than two faces meet or they are wound against
                         ///< each other
};

/// Sews a UV set along edges of the mesh: the UVs on both sides become one.
///
/// With `moves`, of two shells the one of fewer faces is turned, scaled and shifted onto the other
/// along the edges that join them (least squares; mirrored where only that brings it beside the
/// other); UVs of the larger one keep their place. Without, UVs meet in their middle.
///
/// No shell comes out that cannot lie flat. Where sewing everything would close a surface or a
/// handle, a cut graph stays open that leaves the shell a disk (or a disk with the holes that were
/// there): short ways that prefer creases, hard and concave edges, pruned of every branch that
/// cuts nothing. Edges of three faces or more, and of two faces that are wound against each other,
/// stay open. Borders of the mesh and edges without UVs are ignored. The lowest of the UVs that
/// become one stays, the others go. n log n in the edges, the borders and the smaller shells.
SewUvsResult sewUvs(mesh::Mesh& mesh, int uvSet, std::span<const EdgeId> edges,
                    const SewUvsOptions& options = {});

}  // namespace host::ops
