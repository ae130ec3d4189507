#include "shared/numeric/landmarkWarp.h"

#include <algorithm>
#include <cmath>

namespace {

/// A linear system with three right-hand sides, a row after the other.
struct linearSystem {
  explicit linearSystem(std::size_t n) : size(n), rows(n * n, 0.0), right(n, {0.0, 0.0, 0.0}) {}
  double& at(std::size_t row, std::size_t column) { return rows[row * size + column]; }

  /// Leaves the solution in `right`; false when a pivot is no larger than `singular`. Gaussian
  /// elimination by rows.
  bool solve(double singular) {
    for (std::size_t k = 0; k < size; ++k) {
      std::size_t pivot = k;
      for (std::size_t i = k + 1; i < size; ++i)
        if (std::fabs(at(i, k)) > std::fabs(at(pivot, k))) pivot = i;
      if (!(std::fabs(at(pivot, k)) > singular)) return false;
      if (pivot != k) {
        std::swap_ranges(&at(k, 0), &at(k, 0) + size, &at(pivot, 0));
        std::swap(right[k], right[pivot]);
      }
      for (std::size_t i = k + 1; i < size; ++i) eliminate(k, i);
    }
    for (std::size_t k = size; k-- > 0;)
      for (std::size_t axis = 0; axis < 3; ++axis) {
        double sum = right[k][axis];
        for (std::size_t j = k + 1; j < size; ++j) sum -= at(k, j) * right[j][axis];
        right[k][axis] = sum / at(k, k);
      }
    return true;
  }

  std::size_t size;
  std::vector<double> rows;
  std::vector<std::array<double, 3>> right;

 private:
  void eliminate(std::size_t pivot, std::size_t row) {
    const double factor = at(row, pivot) / at(pivot, pivot);
    if (factor == 0.0) return;
    const double* from = &at(pivot, 0);
    double* to = &at(row, 0);
    for (std::size_t j = pivot; j < size; ++j) to[j] -= factor * from[j];
    for (std::size_t axis = 0; axis < 3; ++axis) right[row][axis] -= factor * right[pivot][axis];
  }
};

double affineTerm(const MPoint& offset, unsigned int term) {
  return term == 0 ? 1.0 : offset[term - 1];
}

}  // namespace

bool landmarkWarp::solve(const MPointArray& from, const MPointArray& to, unsigned int affineTerms) {
  const unsigned int count = from.length();
  linearSystem system(count + affineTerms);
  for (unsigned int i = 0; i < count; ++i) {
    for (unsigned int j = 0; j < count; ++j) system.at(i, j) = from[i].distanceTo(from[j]) / scale;
    for (unsigned int t = 0; t < affineTerms; ++t)
      system.at(i, count + t) = system.at(count + t, i) =
          affineTerm((from[i] - MVector(from[0])) / scale, t);
    const MVector shift = to[i] - from[i];
    system.right[i] = {shift.x, shift.y, shift.z};
  }
  // Positions carry the rounding of single precision: landmarks in a plane span space by no more
  // than that.
  if (!system.solve(affineTerms > 1 ? 1e-5 : 1e-10)) return false;
  weights = system.right;
  terms = affineTerms;
  return true;
}

bool landmarkWarp::fit(const MPointArray& from, const MPointArray& to) {
  centres = from;
  weights.clear();
  terms = 0;
  scale = 0.0;
  for (unsigned int i = 1; i < from.length(); ++i)
    scale = std::max(scale, from[i].distanceTo(from[0]));
  if (from.length() == 1) scale = 1.0;
  if (!(scale > 0.0)) return false;
  // Landmarks in one plane leave the affine part open: then a shift is all they fix.
  return (from.length() >= 4 && solve(from, to, 4)) || solve(from, to, 1);
}

MPoint landmarkWarp::operator()(const MPoint& point) const {
  MVector shift;
  const auto add = [&](const std::array<double, 3>& weight, double amount) {
    shift.x += weight[0] * amount;
    shift.y += weight[1] * amount;
    shift.z += weight[2] * amount;
  };
  if (terms == 0) return point;
  for (unsigned int i = 0; i < centres.length(); ++i)
    add(weights[i], point.distanceTo(centres[i]) / scale);
  const MPoint offset = (point - MVector(centres[0])) / scale;
  for (unsigned int t = 0; t < terms; ++t)
    add(weights[centres.length() + t], affineTerm(offset, t));
  return point + shift;
}
