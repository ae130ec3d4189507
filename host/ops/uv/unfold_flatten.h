#pragma once

#include "host/ops/uv/unfold_border.h"
#include "host/ops/uv/unfold_energy.h"
#include "host/ops/uv/unfold_relax.h"

namespace host::ops::flat {

/// A connected piece of surface to be laid flat: manifold, consistently wound, with a border and no
/// handle.
struct Piece {
  std::vector<math::Vec3> points;  ///< at rest; every one has a triangle
  std::vector<Triangle> triangles;
  Border border;
  /// Corners of faces with four, and the first of their two triangles.
  std::vector<std::array<Index, 5>> quads;
};

struct FlattenOptions {
  Energy energy;
  int iterations = 100;      ///< rounds over the whole piece at most, beyond those on coarser ones
  double threshold = 0.001;  ///< ends when a round lowers the energy by less, percent
  double areaWeight = 1;     ///< 0 every triangle weighs the same, 1 by its area
  bool keepsBorderApart = true;
  bool startsFar = false;  ///< positions to go on from are far from the best: all move at once
};
struct Flattened {
  std::vector<Point> x;  ///< in the units of the points; empty when there is none without turned
                         ///< triangles
  int iterations = 0;
};

/// Lays a piece flat from nothing but its shape: coarsens it, lays the coarsest version out inside
/// a circle (Tutte 1963), and puts the vertices back level by level, lowering the energy at each.
///
/// No triangle is turned over and the border does not touch itself. n log n. The same piece always
/// gives the same result, with any number of threads. Stops early with nothing when the work is
/// cancelled.
[[nodiscard]] Flattened flatten(const Piece& piece, const FlattenOptions& options);

/// The elements of a piece at rest. A quad that is convex in `x` is cut both ways, each triangle
/// weighing half, so that it has no preferred diagonal.
[[nodiscard]] std::vector<Element> elementsOf(const Piece& piece, std::span<const Point> x,
                                              double areaWeight, double scale = 1);

/// Goes on from positions without turned triangles.
/// @param border rings to keep apart, or nullptr; @param isFixed vertices that stay, may be empty
/// @return rounds done
int improve(std::span<const Element> elements, const FlattenOptions& options, const Border* border,
            std::span<const std::uint8_t> isFixed, Axes axes, std::vector<Point>& x);

/// Moves vertices until no element is turned over (Garanzha et al. 2021).
/// @return false when some still are after `rounds`
bool untangle(std::span<const Element> elements, std::span<const std::uint8_t> isFixed, Axes axes,
              int rounds, std::vector<Point>& x);

}  // namespace host::ops::flat
