#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SmoothOptions {
  int divisions = 1;       ///< steps, 0 to 8; each makes four times as many faces
  double continuity = 1;   ///< 1 smooth surface, 0 faces are divided and stay flat
  bool keepBorder = true;  ///< border vertices stay; otherwise the border becomes a smooth curve
  bool keepSelectionBorder = true;  ///< the same for the border between listed and other faces
  bool keepHardEdges = false;       ///< hard edges stay sharp creases
  bool propagateHardness =
      false;              ///< edges that come from hard ones are hard; otherwise all are smooth
  bool smoothUVs = true;  ///< UVs follow the same rules; otherwise they are divided evenly
  enum class MapBorders { Smooth, Keep, KeepAll };
  MapBorders mapBorders =
      MapBorders::Keep;  ///< borders of UV shells become smooth curves, stay, or all UVs stay
};

struct SmoothResult {
  std::vector<FaceId> faces;  ///< what the listed faces became, ascending
};

/// Smooths a mesh by Catmull-Clark subdivision with semi-sharp creases.
///
/// Vertices: the old ones, then for each step the middles of edges in ascending order and the
/// middles of faces. A face's quads take its place in the order of its corners. Halves of the first
/// mesh's edges stand in their place at the front, in direction of the edge; edges inside faces
/// follow in order of first use. Edge creases lose one a step (10 and more are kept as they are),
/// so do vertex creases. Border and non-manifold edges are sharp, non-manifold vertices stay. UVs
/// are numbered like vertices and keep their seams; colours are interpolated; locked normals are
/// given up. Faces that are not listed get more corners where they touch listed ones. Linear in the
/// result.
/// @return an error for a bad id or number, or too many faces, with `mesh` untouched.
[[nodiscard]] Result<SmoothResult> smoothMesh(Mesh& mesh, std::span<const FaceId> faces,
                                              const SmoothOptions& options = {});

}  // namespace host::ops
