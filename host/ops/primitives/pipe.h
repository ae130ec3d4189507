#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct PipeOptions {
  double radius = 1;       ///< of the outer side, cm
  double height = 1;       ///< between the ends, cm
  double thickness = 0.5;  ///< of the wall, less than the radius, cm
  int subdivisionsAxis = 20;
  int subdivisionsHeight = 1;
  int subdivisionsCaps = 1;  ///< faces across the wall at each end; 0 counts as 1
  bool roundCap = false;     ///< the ends are half rings, outside the height
  math::Vec3 axis{0, 1, 0};
  bool createUVs = true;
};

/// Makes a tube with a wall.
///
/// Vertices: rings up the outer side, inwards over the top, down the inner side and outwards over
/// the bottom. Edges: rings, then edges between rings; the four rims are hard unless the ends are
/// round. Faces: quads ring by ring. UVs: one sheet, u around, v along the rings. Linear.
/// @return an error for sizes that are not positive, a wall that leaves no hole, fewer than 3
/// subdivisions around, 1 in height or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makePipe(const PipeOptions& options = {});

}  // namespace host::ops
