#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct SphereOptions {
  double radius = 1;            ///< cm
  int subdivisionsAxis = 20;    ///< around the axis
  int subdivisionsHeight = 20;  ///< from pole to pole
  math::Vec3 axis{0, 1, 0};
  int createUVs =
      2;  ///< 0 none, 1 pinched at the poles (one UV each), 2 sawtooth (one UV a pole triangle)
};

/// Makes a sphere of latitude rings with a triangle fan at each pole.
///
/// Vertices: rings from the bottom to the top, bottom pole, top pole. Edges: rings, edges between
/// rings, bottom spokes, top spokes; all smooth. Faces: quads ring by ring, bottom triangles, top
/// triangles. Linear.
/// @return an error for a radius that is not positive, fewer than 3 subdivisions around, 2 in
/// height or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makeSphere(const SphereOptions& options = {});

}  // namespace host::ops
