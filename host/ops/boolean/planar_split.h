#pragma once

#include <array>
#include <span>
#include <utility>
#include <vector>

#include "host/ops/boolean/exact_points.h"

namespace host::ops {

using PointPair = std::pair<PointId, PointId>;

/// A triangle to be split along lines in it.
struct PlanarSplit {
  std::array<PointId, 3> corners;
  int axis = 0;                       ///< the plane is seen along it, see orient2d()
  bool isTurned = false;              ///< the corners turn to the right there
  std::vector<PointId> points = {};   ///< further points in it or on its border, each once
  std::vector<PointPair> lines = {};  ///< between corners and points; they cross nowhere else
};

struct PlanarPieces {
  std::vector<std::array<PointId, 3>> triangles;  ///< turning as the triangle does, none flat
  std::vector<PointPair> lines;                   ///< the pieces of the lines: edges of triangles
};

/// Splits a triangle so that all points are corners and all lines are edges: constrained Delaunay
/// by insertion and flips (Lawson 1977; lines by the swaps of Sloan 1993). What lies where is
/// decided exactly; only which of two good diagonals is taken is up to rounding.
/// Near n log n, points given in any order.
[[nodiscard]] PlanarPieces splitPlanar(const ExactPoints& points, const PlanarSplit& split);

}  // namespace host::ops
