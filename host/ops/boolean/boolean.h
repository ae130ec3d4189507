#pragma once

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

enum class BooleanOperation { Union, Difference, Intersection };

/// Joins two closed meshes to the solid that is in either, in the first alone, or in both.
///
/// What lies where is decided exactly, on vertices rounded to 2^-30 of the largest coordinate (see
/// Arrangement): touching, coplanar and equal meshes are no special case, and the result of two
/// closed meshes is closed. Where faces lie in one plane with the same direction the first mesh's
/// stays; back to back, neither does in a union. The new vertices are rounded to floats. A mesh
/// that is inside out counts, and comes out, right side out; shells of one mesh that overlap count
/// as one body. Of an open mesh nothing is inside: there, what is behind the nearest face is cut
/// off.
///
/// Faces that the other mesh doesn't meet stay as they are; of those that it cuts each connected
/// part becomes one polygon, several where it has holes. Vertices on straight cuts that only the
/// other mesh's triangles made are taken out again.
///
/// Numbering: vertices and faces of the first mesh that stay, in their order, with the parts of a
/// cut face in its place, then the second one's; new vertices follow. Edges as MeshRebuilder says.
/// UVs, colours and locked normals are blended where faces are cut; parts of edges take the edge's
/// smoothness and crease, and the new edges between the two meshes are hard. Tells ProvenanceTrail.
///
/// @param united both meshes as unite() gives them; @param secondFrom the first face of the second
/// @return an error when a coordinate is not finite, or the work was cancelled. No faces are a
/// result: nothing is left.
[[nodiscard]] Result<Mesh> booleanOf(const Mesh& united, FaceId secondFrom,
                                     BooleanOperation operation);

/// Whether a mesh encloses a volume: the walks along its edges cancel out, vertices at one place
/// counted as one. Linear.
[[nodiscard]] Result<bool> isClosedSolid(const Mesh& mesh);

}  // namespace host::ops
