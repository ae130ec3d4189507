#pragma once

#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include <vector>

/// Answers nearest-point questions over a fixed set of points: a balanced tree in one array, n log
/// n to build, log n a question. Points that are not numbers are left out.
class pointIndex {
 public:
  /// Indexes entries [start, start + count) of `points`; answers are places in that run, counted
  /// from 0.
  pointIndex(const MPointArray& points, unsigned int start, unsigned int count);

  /// The place of the nearest point that is closer than `limit`, the first in the run among equally
  /// near ones; -1 when there is none. `distance` gets its distance.
  int nearest(const MPoint& point, double limit, double* distance = nullptr) const;

 private:
  struct entry {
    double position[3];
    int place;
  };
  struct search {
    double target[3];
    double bestSquared;
    int best;
  };
  void build(std::size_t first, std::size_t last, int axis);
  void find(search& state, std::size_t first, std::size_t last, int axis) const;

  std::vector<entry> tree;  ///< the middle of every range splits it; the axis turns with the depth
};
