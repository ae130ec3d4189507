#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct ExtrudeVerticesOptions {
  double width = 0;   ///< of the base along the edges, in the space below, cm; at most the edge
  double length = 0;  ///< of the spike along the vertex normal, in the space below, cm
  int divisions = 1;  ///< rows of faces from the base to the tip
  math::Matrix4 space = {};  ///< from object space to the space lengths are measured in
};

struct ExtrudeVerticesResult {
  std::vector<VertexId> tips;  ///< the vertices themselves, ascending
  std::vector<FaceId> faces;   ///< new faces around them, ascending
};

/// Pulls vertices out to spikes: each keeps its id as the tip, and a base of new vertices on its
/// edges surrounds it.
///
/// Of an edge between two listed vertices each base takes less than half. Every face at a vertex
/// loses the corner to the spike: its piece at the tip follows behind the old faces. UVs and
/// colours are interpolated along the edges. Linear in the mesh.
/// @return an error for a bad id or number, with `mesh` untouched
[[nodiscard]] Result<ExtrudeVerticesResult> extrudeVertices(Mesh& mesh,
                                                            std::span<const VertexId> vertices,
                                                            const ExtrudeVerticesOptions& options);

struct DuplicateEdgesOptions {
  double offset = 0.5;  ///< how far along the neighbouring edges, 0 to 1; with `isAbsolute` in cm
  bool isAbsolute = false;
};

/// Adds an edge on both sides of each listed edge, between points on the edges that lead away from
/// its ends. Numbering and data as in connectComponents().
/// @return the new edges, ascending; an error for a bad id or number with `mesh` untouched
[[nodiscard]] Result<std::vector<EdgeId>> duplicateEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                         const DuplicateEdgesOptions& options);

}  // namespace host::ops
