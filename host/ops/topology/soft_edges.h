#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Makes edges smooth where the faces meet at no more than an angle, and hard elsewhere.
///
/// The angle between two faces is the one between their normals; faces without area count as flat.
/// 0 makes all listed edges hard and pi or more makes them smooth; in between, border edges keep
/// their state and non-manifold ones become hard. Nothing else changes. Linear in the mesh's
/// corners, at the cost of reading them once.
/// @param angle radians
/// @param space from object space to the one that angles are measured in
/// @return an error for a bad id or an angle that is no number, with `mesh` untouched.
[[nodiscard]] Result<void> softenEdges(Mesh& mesh, std::span<const EdgeId> edges, double angle,
                                       const math::Matrix4& space = {});

/// An edge with the faces at its sides.
struct EdgeSides {
  EdgeId edge = kNone;
  Index faceCount = 0;  ///< a face that walks the edge twice counts once
  FaceId first = kNone, second = kNone;
};

/// The faces at the given edges (ascending, no repeats). One pass over the mesh, which needs no
/// adjacency.
[[nodiscard]] std::vector<EdgeSides> sidesOfEdges(const Mesh& mesh, std::span<const EdgeId> edges);

/// Does what softenEdges() does for edges whose sides are known; no space: object space. Linear in
/// the edges; copies the flags of all edges when one changes.
/// @param own  the mesh whose border edges say what theirs are; none: `mesh` itself. For meshes
/// that
///             were softened before and come again
void softenSides(Mesh& mesh, std::span<const EdgeSides> sides, double angle,
                 const math::Matrix4* space = nullptr, const Mesh* own = nullptr);

}  // namespace host::ops
