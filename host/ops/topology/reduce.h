#pragma once

#include <optional>
#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// How much is left, by the first of these that is there; the faces are counted as triangles.
struct ReduceOptions {
  std::optional<double> percentage = {};      ///< of the triangles go
  std::optional<std::size_t> vertices = {};   ///< of the listed faces are left
  std::optional<std::size_t> triangles = {};  ///< of the listed faces are left

  bool keepsBorder = true;       ///< open edges of the mesh keep their line; else they may flatten
  bool keepsMapBorder = true;    ///< likewise edges where a UV set is cut
  bool keepsColorBorder = true;  ///< likewise edges where colours differ across; else colours are
                                 ///< those of either side there
  bool keepsHardEdges = true;    ///< likewise hard edges
  bool keepsCreases = true;      ///< likewise creased edges
  std::vector<EdgeId> lines = {};  ///< further edges to keep, as borders of materials are
  double featureWeight = 0.5;  ///< of the shape of kept lines against that of the surface, [0, 1]
};

struct ReduceResult {
  std::vector<FaceId> faces;  ///< what is left of the listed ones, ascending
  bool isShort = false;       ///< no further edge could go before the number was reached
};

/// Takes edges out of faces until few enough triangles are left, those first whose loss changes the
/// shape least (Garland and Heckbert, Surface Simplification Using Quadric Error Metrics, 1997).
///
/// An edge goes by drawing one of its ends onto the other, so that the vertices left are vertices
/// of before, with their UVs, colours and locked normals: no seam opens and nothing is blended.
/// Ends of an edge on a kept line move along the line only, also where the line may flatten; where
/// lines meet or end a vertex stays, and so it does at non-manifold edges and beside faces that are
/// not listed. No triangle turns over or loses its area, and no hole, handle or second sheet comes
/// to be. Listed faces become triangles, in place; others, and vertices without faces, stay. Of new
/// edges only those along kept lines take smoothness and crease, those of the line. n log n.
/// @return an error for a bad id, or without any number, with `mesh` untouched; when cancelled too
[[nodiscard]] Result<ReduceResult> reduce(Mesh& mesh, std::span<const FaceId> faces,
                                          const ReduceOptions& options);

}  // namespace host::ops
