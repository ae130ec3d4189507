#pragma once

#include <vector>

namespace host::math {

/// How much each of the evenly spaced points of a lattice along one axis counts at a place.
///
/// Weights add up to one and give the place back when the points are where they belong, so that a
/// lattice at rest moves nothing and one that is moved as a whole moves all alike; the first and
/// the last point are reached. Outside of the lattice weights go on in straight lines.
class LatticeBasis {
 public:
  /// Points along one axis, at least two. A reach of 1 and more lets a point count as many
  /// divisions away: straight lines for 1, a uniform cubic B-spline for 2 and so on, with points
  /// beyond the ends mirrored through them. A reach of 0 lets every point count everywhere:
  /// Bernstein polynomials (Sederberg and Parry 1986).
  LatticeBasis(int count, int reach);

  [[nodiscard]] int count() const { return count_; }
  /// `place` is 0 at the first point, 1 at the last. `weights` gets one a point.
  /// @return the first and one past the last point that count
  struct Range {
    int first = 0, last = 0;
  };
  Range at(double place, std::vector<double>& weights) const;

 private:
  void inside(double place, std::vector<double>& weights, bool isSlope) const;
  void add(std::vector<double>& weights, int point, double weight) const;

  int count_, reach_;
};

}  // namespace host::math
