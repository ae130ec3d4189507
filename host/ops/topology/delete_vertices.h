#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Deletes vertices: the faces around each are joined and the vertex taken out of their loops.
///
/// On a border the faces at the vertex are joined and lose it; a face with fewer than three corners
/// left goes. Joined faces take the place of the lowest of them; isolated vertices that are listed
/// go. Corners that are left keep their UVs, colours and locked normals; an edge that closes a gap
/// takes smoothness and crease of one that it replaces. Linear in the mesh.
/// @return where components went, or an error for a bad id with `mesh` untouched.
[[nodiscard]] Result<EditMaps> deleteVertices(Mesh& mesh, std::span<const VertexId> vertices);

}  // namespace host::ops
