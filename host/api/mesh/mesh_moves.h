#pragma once

#include <span>

#include "host/api/mesh/mesh_target.h"

namespace host::api {

/// Moves some points of a mesh, each listed once, in object space; costs them alone where the shape
/// has neither history nor tweaks.
[[nodiscard]] MStatus movePoints(const MeshTarget& target, std::span<const VertexId> vertices,
                                 std::span<const math::Vec3f> places);

}  // namespace host::api
