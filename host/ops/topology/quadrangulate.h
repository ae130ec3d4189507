#pragma once

#include <numbers>
#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct QuadrangulateOptions {
  double angle = std::numbers::pi / 6;  ///< triangles that meet at more are not joined, radians
  bool keepGroupBorder = true;          ///< only listed triangles are joined to each other
  bool keepHardEdges = true;            ///< triangles are not joined across hard edges
  bool keepTextureBorders = true;       ///< nor where the UVs of any set have a seam
  math::Matrix4 space;  ///< from object space to the space that angles are measured in
};

struct QuadrangulateResult {
  EditMaps maps;              ///< joined triangles map to the quad they became
  std::vector<FaceId> quads;  ///< new ones, ascending
};

/// Joins pairs of triangles to quads, the squarest pairs first.
///
/// Each listed triangle is joined to at most one other across a manifold edge, where the quad is
/// convex. A quad takes the place of its lower triangle, ids close up. Corners keep UVs, colours
/// and locked normals, edges smoothness and crease; creased edges stay. Sorts the candidate edges,
/// else linear in the mesh.
/// @return what became of components, or an error for a bad id or angle, with `mesh` untouched.
[[nodiscard]] Result<QuadrangulateResult> quadrangulate(Mesh& mesh, std::span<const FaceId> faces,
                                                        const QuadrangulateOptions& options = {});

}  // namespace host::ops
