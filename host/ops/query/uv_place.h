#pragma once

#include <array>
#include <optional>

#include "host/mesh/mesh.h"

namespace host::ops {

/// A place on a face: weights over three of its corners.
struct FacePlace {
  std::array<CornerId, 3> corners{kNone, kNone, kNone};
  std::array<double, 3> weights{1, 0, 0};
};

/// Finds where a face has given UVs. A place outside that is no farther than `tolerance` (UV units)
/// counts at its nearest one. Linear in the face's corners.
/// @return nothing when the face does not cover the UVs or has none in the set
[[nodiscard]] std::optional<FacePlace> placeAtUv(const mesh::Mesh& mesh, int uvSet, FaceId face,
                                                 const mesh::Vec2f& uv, double tolerance);
/// The place of a face nearest to a point, object space.
[[nodiscard]] FacePlace closestOnFace(const mesh::Mesh& mesh, FaceId face, const mesh::Vec3& point);

[[nodiscard]] mesh::Vec3 pointAt(const mesh::Mesh& mesh, const FacePlace& place);
/// The UVs at a place; nothing when its face has none in the set.
[[nodiscard]] std::optional<mesh::Vec2f> uvAt(const mesh::Mesh& mesh, int uvSet,
                                              const FacePlace& place);

/// The directions in which u and v grow at a place, unit, object space, and the triangle's normal.
struct UvAxes {
  mesh::Vec3 normal, u, v;
};
/// @return nothing when the triangle has no area in the set or on the surface
[[nodiscard]] std::optional<UvAxes> uvAxesAt(const mesh::Mesh& mesh, int uvSet,
                                             const FacePlace& place);

/// The signed area of a face in a UV set: negative where the UVs are mirrored, 0 without UVs.
[[nodiscard]] double uvArea(const mesh::Mesh& mesh, int uvSet, FaceId face);

}  // namespace host::ops
