#pragma once

#include <cstdint>
#include <vector>

#include "brushes/uvLayout.h"

/// Moves UVs so that no polygon turns over: what lay the way of its shell lies that way afterwards,
/// tested exactly. Steps that would turn one over are halved, and in the end not made, for the UVs
/// of that polygon alone. A polygon that lay the wrong way before may be put right.
///
/// Of a polygon with more than three corners every corner is tested, so that a convex one stays
/// convex; from five corners on its fan of triangles too, so that it can't wind round twice. What
/// was too thin to outlive rounding may stay thin, and nothing becomes so.
///
/// Costs the polygons around what is moved.
class uvGuard {
 public:
  explicit uvGuard(uvLayout& layoutIn);

  /// Moves `uvs` (each once) from where they are to `targets`, two finite floats each, as far as
  /// that goes. @return how many did not go all the way
  int move(const std::vector<int>& uvs, const std::vector<float>& targets);

 private:
  struct step {
    int uv;
    float from[2], to[2];
    int halvings;
  };
  bool isWorse(int face) const;
  int firmnessAt(int face, int corner, bool before) const;
  const float* placeOf(int uv, bool before) const;
  void shorten(step& each);
  std::vector<int> facesAround(const std::vector<int>& uvs);

  uvLayout& layout;
  std::vector<step> steps;
  std::vector<int> stepOf;             ///< one a UV; -1 while it does not move
  std::vector<std::uint32_t> visited;  ///< the round in which a polygon was listed last
  std::uint32_t round = 0;
};
