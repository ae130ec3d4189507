#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct DeleteEdgesOptions {
  bool cleanVertices = false;  ///< also remove vertices that are left with two edges
};

struct DeleteEdgesResult {
  EditMaps maps;      ///< joined faces map to the face they became
  Index deleted = 0;  ///< listed edges that went
};

/// Deletes edges by joining the faces at their sides.
///
/// Joined faces take the place of the lowest of them; edges that are left dangling inside a face go
/// too, and vertices without faces. Edges stay that no joining could remove: border and
/// non-manifold ones, those between faces wound against each other, and the last edge between a
/// face and an island inside it. Cleaning looks at the ends of deleted edges only; two edges that
/// become one give it their smoothness and crease when either is hard or creased. Corners keep
/// their UVs, colours and locked normals. Linear in the mesh.
/// @return where components went, or an error for a bad id with `mesh` untouched.
[[nodiscard]] Result<DeleteEdgesResult> deleteEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                    const DeleteEdgesOptions& options = {});

}  // namespace host::ops
