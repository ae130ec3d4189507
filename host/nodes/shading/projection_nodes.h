#pragma once

#include <optional>
#include <span>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

/// Registers `projection`, which lays a texture on surfaces by where they are in space, and
/// `place3dTexture`, the transform that says from where.
void registerProjection(dg::TypeRegistry& types);

/// How a projection node lays its image on surfaces.
struct TextureProjection {
  enum class Shape : std::uint8_t { Planar, Spherical, Cylindrical, Cubic };
  Shape shape = Shape::Planar;
  math::Matrix4 toPlacement;      ///< from world space to where the image fills -1 to 1
  double uAngle = 0, vAngle = 0;  ///< what fills the image about the axis and up, radians
  friend bool operator==(const TextureProjection&, const TextureProjection&) = default;
};

/// What a projection node says now; nothing when it is off. Kinds that are not known lie on as
/// planes.
[[nodiscard]] std::optional<TextureProjection> textureProjectionOf(Node& projection);

/// The projection node that a colour comes through, at whatever depth; null when there is none.
[[nodiscard]] Node* projectionBehind(const Plug& color);

/// Gives faces the UVs, in the current set, by which the projection's image lies on them. Exact for
/// planes, by the corners for the others. Leaves them when the projection can't be.
/// @param world takes the mesh's points to world space
void projectTexture(mesh::Mesh& mesh, std::span<const FaceId> faces, const math::Matrix4& world,
                    const TextureProjection& projection);

}  // namespace host::nodes
