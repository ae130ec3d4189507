#pragma once

#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include <array>
#include <vector>

/// A smooth bending of space that takes landmarks where they belong and everything else along:
/// radial functions of the distance to every landmark, and an affine part where the landmarks span
/// space (Bookstein, "Principal Warps", 1989, in 3D).
class landmarkWarp {
 public:
  static constexpr unsigned int kMostLandmarks = 1000;

  /// Finds the warp that takes `from[i]` to `to[i]`. Cubic in their number.
  /// @return false, with the warp leaving all points alone, when two of `from` coincide
  bool fit(const MPointArray& from, const MPointArray& to);

  /// Where a point goes; linear in the number of landmarks.
  MPoint operator()(const MPoint& point) const;

 private:
  bool solve(const MPointArray& from, const MPointArray& to, unsigned int affineTerms);

  MPointArray centres;
  double scale = 1.0;  ///< distances are measured in it
  std::vector<std::array<double, 3>>
      weights;             ///< one a centre, then the affine part: constant, x, y, z
  unsigned int terms = 0;  ///< of the affine part: 0, 1 or 4
};
