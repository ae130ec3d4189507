#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::ops {

/// Which components move, and what makes up a region with a frame of its own.
enum class MovedComponents {
  Vertices,  ///< each vertex, z along the mean normal of its faces
  Edges,     ///< edges that share vertices, z along the mean normal of the faces at them
  Faces      ///< faces that share edges, z along their mean normal
};

/// Moves components as an extrusion moves its copies, without making any.
///
/// The local transform goes in the frame of each region, the world transform about the pivot, by
/// default the middle of all that moves; both in the placement's space. Of faces, `offset` and
/// `thickness` count too. A vertex of two regions goes to the mean of its places. Topology and
/// corner data stay, locked normals included. Linear in the mesh.
/// @return an error for a bad id or number or a space without inverse, with `mesh` untouched.
Result<void> moveComponents(Mesh& mesh, MovedComponents what, IdView ids,
                            const ExtrudePlacement& placement);

}  // namespace host::ops
