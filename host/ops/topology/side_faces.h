#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {

/// Finishes quads that an extrusion built along edges: corners 0 and 1 lie at the old edge, 2 and 3
/// at the new one.
///
/// Their normals are not locked. UVs at the old edge become UVs of their own at the same places, so
/// that the sides can be unfolded without touching their neighbours; the new edge shares UVs with
/// what it borders.
/// @return the sides' edges, ascending, for softenSides()
[[nodiscard]] std::vector<EdgeSides> detachSideFaces(Mesh& mesh, std::span<const FaceId> sides);

}  // namespace host::ops
