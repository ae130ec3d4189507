#pragma once

#include <cstdint>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The tangent frames of a UV set, one a corner. The binormal is normal x tangent, turned over
/// where the UVs are mirrored.
struct CornerTangents {
  std::vector<mesh::Vec3f> tangents;        ///< unit, along growing u; zero in faces without UVs
  std::vector<std::uint8_t> isRightHanded;  ///< 1 where the binormal is normal x tangent
};

/// Computes tangents from the UVs' gradient over the triangle at each corner.
///
/// Corners at one vertex that share UV, normal and handedness get the mean, weighted by area;
/// each tangent stands square on its corner's normal. Where the UVs have no area, any direction
/// across the normal is taken. Linear.
[[nodiscard]] CornerTangents computeTangents(const mesh::Mesh& mesh, int uvSet);

}  // namespace host::ops
