#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct ConeOptions {
  double radius = 1;  ///< of the base, cm
  double height = 2;  ///< from the base to the tip, cm
  int subdivisionsAxis = 20;
  int subdivisionsHeight = 1;
  int subdivisionsCap =
      0;  ///< 0: the base is one polygon; n: a fan around its centre and n - 1 rings
  bool roundCap =
      false;  ///< the base is a half ball of the radius below the height; needs subdivisionsCap
  math::Vec3 axis{0, 1, 0};
  /// 0 none; 1 side and base in cm; 2 stretched to the unit square; 3 the stored layout: the side
  /// as a triangle over u 1/4..3/4, v 1/2..1, the base as a disc of radius 1/4 below
  int createUVs = 3;
};

/// Makes a closed cone with its tip up.
///
/// Vertices: rings from the base's centre outwards and up the side, the base's centre if it is
/// divided, the tip. Edges: rings, edges between rings, base spokes, tip spokes; the rim is hard
/// unless the cap is round. Faces: an undivided base first, then quads ring by ring, base
/// triangles, tip triangles. Linear.
/// @return an error for sizes that are not positive, fewer than 3 subdivisions around, 1 in height
/// or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makeCone(const ConeOptions& options = {});

struct PyramidOptions {
  double sideLength =
      1;  ///< of the base's edges and, with up to five sides, of the edges to the tip, cm
  int sides = 4;
  int subdivisionsHeight = 1;
  int subdivisionsCap = 0;
  math::Vec3 axis{0, 1, 0};
  int createUVs = 3;  ///< as for a cone
};

/// Makes a pyramid with its tip up and all edges hard; numbering as makeCone().
///
/// With up to five sides all edges have the same length; with more the height is the side length.
/// @return an error for a side that is not positive, fewer than 3 sides, 1 subdivision in height or
/// a zero axis.
[[nodiscard]] Result<mesh::Mesh> makePyramid(const PyramidOptions& options = {});

}  // namespace host::ops
