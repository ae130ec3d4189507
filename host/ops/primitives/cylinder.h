#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

struct CylinderOptions {
  double radius = 1;  ///< cm
  double height = 2;  ///< between the caps, cm
  int subdivisionsAxis = 20;
  int subdivisionsHeight = 1;
  int subdivisionsCaps =
      1;  ///< 0: each cap is one polygon; n: a fan around the centre and n - 1 rings
  bool roundCap = false;  ///< caps are half ellipsoids of the radius, outside the height
  bool roundCapHeightCompensate =
      false;               ///< round caps are counted into the height, as far as it reaches
  bool isFaceted = false;  ///< all edges are hard
  math::Vec3 axis{0, 1, 0};
  /// 0 none; 1 unrolled in cm; 2 unrolled and stretched to the unit square; 3 the stored layout:
  /// side in the middle (u 3/8..5/8, v 5/16..11/16), caps as discs of radius 5/32 below and above
  int createUVs = 3;
};

/// Makes a closed cylinder around the axis.
///
/// Vertices: rings from the bottom cap's centre outwards, up the side and to the top cap's centre,
/// then the two centres. Edges: rings, edges between rings, bottom spokes, top spokes; the two rims
/// are hard unless caps are round. Faces: quads ring by ring, bottom cap, top cap. UV rows follow
/// the rings; a rim has one row for the cap and one for the side. Linear.
/// @return an error for sizes that are not positive, fewer than 3 subdivisions around, 1 in height
/// or a zero axis.
[[nodiscard]] Result<mesh::Mesh> makeCylinder(const CylinderOptions& options = {});

struct PrismOptions {
  double length = 2;      ///< between the ends, cm
  double sideLength = 1;  ///< of the ends' edges, cm
  int sides = 3;
  int subdivisionsHeight = 1;
  int subdivisionsCaps = 0;
  math::Vec3 axis{0, 1, 0};
  int createUVs = 3;  ///< as for a cylinder
};

/// Makes a prism over a regular polygon, with all edges hard; numbering as makeCylinder().
/// @return an error for sizes that are not positive, fewer than 3 sides, 1 subdivision in height or
/// a zero axis.
[[nodiscard]] Result<mesh::Mesh> makePrism(const PrismOptions& options = {});

}  // namespace host::ops
