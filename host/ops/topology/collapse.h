#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct CollapseResult {
  EditMaps maps;
  std::vector<VertexId>
      vertices;  ///< what the listed components collapsed to, ascending, where faces are left
};

/// Collapses edges: all vertices joined by listed edges become one at their mean.
///
/// The lowest id stays. UVs that the edges join collapse to their means, per UV set and per UV
/// shell, so seams stay seams. Faces without area left go, edges that come to lie on each other
/// become one (the lowest, with its smoothness and crease); ids close up. Colours and locked
/// normals stay with the corners that are left. Linear in the mesh.
/// @return where components went, or an error for a bad id with `mesh` untouched.
[[nodiscard]] Result<CollapseResult> collapseEdges(Mesh& mesh, std::span<const EdgeId> edges);

/// Collapses faces: as collapseEdges() with all edges of the listed faces.
[[nodiscard]] Result<CollapseResult> collapseFaces(Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
