#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct MergeVerticesOptions {
  double distance = 0.01;      ///< largest distance that is merged, in the space below, cm
  bool alwaysMergeTwo = true;  ///< two vertices are merged whatever their distance
  math::Matrix4 space;         ///< from object space to the space distances are measured in
};

struct MergeVerticesResult {
  EditMaps maps;     ///< merged vertices map to the one they became
  Index merged = 0;  ///< vertices that went
};

/// Merges vertices that lie close to each other.
///
/// In order of id each listed vertex joins the nearest vertex before it that no other took in and
/// that is within the distance, so chains do not collapse into one point. Merged vertices get the
/// lowest id and the mean position. Faces that lose their area by it go, edges that come to lie on
/// each other become one (the lowest, with its smoothness and crease); ids close up. Corners keep
/// their UVs, colours and locked normals: UVs stay split. Vertices listed twice count once. Linear
/// in the mesh.
/// @return where components went, or an error for a bad id or distance with `mesh` untouched.
[[nodiscard]] Result<MergeVerticesResult> mergeVertices(Mesh& mesh,
                                                        std::span<const VertexId> vertices,
                                                        const MergeVerticesOptions& options = {});

}  // namespace host::ops
