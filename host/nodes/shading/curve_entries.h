#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace host::nodes {

/// Entries of a curve or ramp as rows: position, `width` values, interpolation (0 none, 1 linear,
/// 2 smooth, 3 spline, which is read as smooth).
class CurveEntries {
 public:
  CurveEntries(const std::vector<double>& rows, std::size_t width) : rows_(rows), width_(width) {}

  /// The values at a position; before the first entry and after the last those of it. Leaves `out`
  /// alone without entries.
  void read(double at, std::span<double> out) const {
    const std::size_t stride = width_ + 2;
    const double *below = nullptr, *above = nullptr;
    for (std::size_t i = 0; i + stride <= rows_.size(); i += stride) {
      const double* row = &rows_[i];
      if (row[0] <= at && (!below || row[0] >= below[0])) below = row;
      if (row[0] > at && (!above || row[0] < above[0])) above = row;
    }
    if (!below && !above) return;
    if (!below || !above) {
      const double* only = below ? below : above;
      std::copy(only + 1, only + 1 + width_, out.begin());
      return;
    }
    double share = (at - below[0]) / (above[0] - below[0]);
    const int interpolation = static_cast<int>(below[width_ + 1]);
    if (interpolation == 0) share = 0;
    if (interpolation >= 2) share = share * share * (3 - 2 * share);
    for (std::size_t i = 0; i < width_; ++i)
      out[i] = below[1 + i] + share * (above[1 + i] - below[1 + i]);
  }

 private:
  const std::vector<double>& rows_;
  std::size_t width_;
};

}  // namespace host::nodes
