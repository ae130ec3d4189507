#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct TorusOptions {
  double radius = 1;            ///< from the axis to the middle of the section, cm
  double sectionRadius = 0.5;   ///< cm
  double twist = 0;             ///< turns the section's vertices, radians
  int subdivisionsAxis = 20;    ///< around the axis
  int subdivisionsHeight = 20;  ///< around the section
  math::Vec3 axis{0, 1, 0};
  int createUVs = 1;  ///< 0 none, 1 the unit square
};

/// Makes a torus of rings around the axis.
///
/// Vertices: ring by ring, starting at the inner side of the section and rising. Edges: all rings,
/// then all edges from a ring to the next; all smooth. Faces (i + 1, i, next ring's i, next ring's
/// i + 1), ring by ring. Linear.
/// @return an error for radii that are not positive, fewer than 3 subdivisions either way or a zero
/// axis.
[[nodiscard]] Result<mesh::Mesh> makeTorus(const TorusOptions& options = {});

}  // namespace host::ops
