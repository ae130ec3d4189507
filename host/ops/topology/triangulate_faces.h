#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct TriangulateResult {
  std::vector<FaceId>
      newFaces;  ///< for each old face its first new one, and the number of faces at the end
  std::vector<FaceId> triangles;  ///< what the listed faces became, ascending
};

/// Splits faces into triangles.
///
/// A face's triangles take its place, so later faces move up. A quad (a, b, c, d) becomes (a, b, d)
/// and (d, b, c), a concave one is cut the other way; larger faces are cut as mesh/triangulate.h
/// says. New edges follow the old ones, which keep their ids, smoothness and crease; they are
/// smooth. Corners keep UVs, colours and locked normals. Linear in the mesh.
/// @return an error for a bad id, with `mesh` untouched.
[[nodiscard]] Result<TriangulateResult> triangulateFaces(Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
