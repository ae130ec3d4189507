#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct CubeOptions {
  double width = 1;   ///< along x, cm
  double height = 1;  ///< along y, cm
  double depth = 1;   ///< along z, cm
  int subdivisionsWidth = 1;
  int subdivisionsHeight = 1;
  int subdivisionsDepth = 1;
  math::Vec3 axis{0, 1, 0};   ///< the direction that the height takes
  double heightBaseline = 0;  ///< which height lies at the origin: -1 bottom, 0 middle, 1 top
  /// 0 none, 1 unfolded in cm, 2 each face fills the unit square, 3 unfolded and stretched to the
  /// unit square, 4 unfolded and scaled evenly into the unit square
  int createUVs = 4;
};

/// Makes a box around the origin.
///
/// Vertices: rows of the width from left to right, wrapped around front (upwards), top (backwards),
/// back (downwards) and bottom (forwards); then the inner grids of the right and the left side,
/// each row by row from below, starting at the front on the right and at the back on the left.
/// Edges: the rows, the edges between rows, then each side's inner edges along the depth and along
/// the height. Faces: front, top, back, bottom, right, left. The twelve edges of the box are hard,
/// the inner ones smooth. UVs unfold the wrapped rows upwards with the sides beside the front;
/// per-face UVs (2) are not shared between faces of the box. Linear.
/// @return an error for sizes that are not positive, subdivisions below 1 or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makeCube(const CubeOptions& options = {});

}  // namespace host::ops
