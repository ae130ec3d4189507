#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// A place on the path of a cut: on an edge, or inside a face.
struct SplitPoint {
  EdgeId edge = kNone;  ///< kNone: a point inside a face
  double t = 0;         ///< on the edge, from its first vertex (0) to its second (1)
  math::Vec3f point;    ///< inside a face, object space
};

struct SplitPathResult {
  std::vector<VertexId>
      vertices;               ///< one a path point: a new vertex, or the edge's end at t 0 or 1
  std::vector<FaceId> faces;  ///< pieces behind the old faces
};

/// Cuts faces along a path that a person draws from edge to edge.
///
/// The path begins and ends on edges; each pair of edge points that follow one another, with the
/// inside points between them, lies on one face and cuts it in two. The piece that follows the
/// path's direction on its left keeps the face's id, the other comes behind the old faces; pieces
/// of an edge take its smoothness and crease, new edges are smooth. UVs and colours are
/// interpolated on each face. Linear in the mesh.
/// @return an error for fewer than two points, a bad edge or parameter, ends inside a face, or
/// neighbours without a common face, with `mesh` untouched.
[[nodiscard]] Result<SplitPathResult> splitPath(Mesh& mesh, std::span<const SplitPoint> path);

}  // namespace host::ops
