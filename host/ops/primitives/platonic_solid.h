#pragma once

#include <cstdint>

#include "host/mesh/mesh.h"

namespace host::ops {

enum class PlatonicSolid : std::uint8_t { Dodecahedron, Icosahedron, Octahedron, Tetrahedron };

struct PlatonicSolidOptions {
  PlatonicSolid solid = PlatonicSolid::Dodecahedron;
  double radius = 1;  ///< from the middle to the vertices, cm
  math::Vec3 axis{0, 1, 0};
  /// 0 none; 1 one net in cm; 2 each face over the whole unit square; 3 the net stretched to the
  /// unit square; 4 the net fitted into it in proportion
  int createUVs = 4;
};

/// The length of the edges of a solid of radius 1.
[[nodiscard]] double platonicSideLength(PlatonicSolid solid);

/// Makes a regular solid around the origin, with all edges hard.
///
/// Faces and vertices are in the order of the tables in the source; edges in the order in which the
/// faces' corners first name them. The net unfolds the faces breadth first from the first one.
/// @return an error for a radius that is not positive or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makePlatonicSolid(const PlatonicSolidOptions& options = {});

}  // namespace host::ops
