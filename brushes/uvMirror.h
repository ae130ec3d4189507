#pragma once

#include <memory>
#include <vector>

#include "brushes/uvLayout.h"
#include "shared/numeric/pointIndex.h"

/// Pairs of UVs that lie mirrored across a line of the map, as they are when it is built.
class uvMirror {
 public:
  /// @param axis 0: the line crosses u, 1: it crosses v; @param line where, in the layout's numbers
  uvMirror(const uvLayout& layout, int axis, double line);

  /// The counterpart of a UV: the nearest to its mirror image, itself on the line; -1 for none
  /// within a thousandth of the map's diagonal.
  int counterpart(int uv) const;
  void reflect(float (&place)[2]) const;

 private:
  std::vector<float> places;  ///< as they were when it was built
  std::size_t axis;
  double line, reach;
  std::unique_ptr<pointIndex> index;
};

/// Adds to UVs and the places they are to go to those of their counterparts. Of two counterparts
/// that both are listed the one that weighs more has its way, of equals the first; a UV on the line
/// stays on it.
/// @param weights one a UV, of those listed before
void addCounterparts(const uvMirror& mirror, const std::vector<double>& weights,
                     std::vector<int>& uvs, std::vector<float>& targets);
