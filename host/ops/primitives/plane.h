#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct PlaneOptions {
  double width = 1;   ///< along x, cm
  double height = 1;  ///< along z, cm
  int subdivisionsWidth = 10;
  int subdivisionsHeight = 10;
  math::Vec3 axis{0, 1, 0};  ///< the plane's normal
  int createUVs = 2;         ///< 0 none, 1 stretched to the unit square, 2 scaled evenly into it
};

/// Makes a rectangular grid around the origin.
///
/// Vertices: rows from left to right, the first row at +z. Edges: for each vertex the one to the
/// right, then the one to the next row; the border is hard, the rest smooth. Faces and UVs go row
/// by row. Linear.
/// @return an error for sizes that are not positive, subdivisions below 1 or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makePlane(const PlaneOptions& options = {});

}  // namespace host::ops
