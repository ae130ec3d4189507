#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct HelixOptions {
  double coils = 3;     ///< turns
  double height = 2;    ///< of the tube's middle line along the axis, cm; 0 lays the coils flat
  double width = 2;     ///< diameter of the middle line, cm
  double radius = 0.4;  ///< of the tube, cm
  bool isCounterClockwise = true;  ///< seen from the tip of the axis, going up
  int subdivisionsAxis = 8;        ///< around the tube
  int subdivisionsCoil = 50;       ///< along each turn
  int subdivisionsCaps =
      0;  ///< 0: each end is one polygon; n: a fan around the centre and n - 1 rings
  bool roundCap = false;  ///< ends are half balls; needs subdivisionsCaps
  math::Vec3 axis{0, 1, 0};
  /// 0 none; 1 unrolled in cm; 2 unrolled and stretched to the unit square; 3 fitted into it in
  /// proportion
  int createUVs = 3;
};

/// Makes a closed tube along a helix.
///
/// Vertices: rings from the lower end's centre outwards, along the tube and to the upper end's
/// centre, then the two centres. Edges: rings, edges between rings, lower spokes, upper spokes; the
/// two rims are hard unless ends are round. Faces: quads ring by ring, lower end, upper end.
/// Linear.
/// @return an error for sizes that are not positive, a height that is negative, fewer than 3
/// subdivisions around the tube, 1 along a turn or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makeHelix(const HelixOptions& options = {});

}  // namespace host::ops
