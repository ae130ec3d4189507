#pragma once

#include <span>
#include <vector>

#include "host/math/vec.h"

namespace host::ops {

/// A map of the plane that keeps shapes: turn, scale, shift, and perhaps a mirror first.
struct Similarity {
  double a = 1, b = 0;  ///< the turn and scale: (u, v) -> (a u - b v, b u + a v)
  double shiftU = 0, shiftV = 0;
  bool isMirrored = false;  ///< v is negated first

  [[nodiscard]] math::Vec2f apply(const math::Vec2f& uv) const {
    const double u = uv.u, v = isMirrored ? -static_cast<double>(uv.v) : static_cast<double>(uv.v);
    return {static_cast<float>(a * u - b * v + shiftU), static_cast<float>(b * u + a * v + shiftV)};
  }
};

/// A place and where it should come to lie.
struct FitPair {
  math::Vec2f from, to;
  double weight = 1;
};

/// Finds the similarity that brings the places nearest to their targets in the least-squares sense.
/// Places in one point are only shifted.
/// @param residual set to the root of the weighted mean of the squared distances that remain
[[nodiscard]] Similarity fitSimilarity(std::span<const FitPair> pairs, bool isMirrored,
                                       double* residual = nullptr);

}  // namespace host::ops
