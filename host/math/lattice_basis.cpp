#include "host/math/lattice_basis.h"

#include <algorithm>
#include <cmath>

namespace host::math {

namespace {

/// The uniform B-spline of a degree around zero.
double spline(int degree, double x) {
  const double half = (degree + 1) / 2.0;
  if (x <= -half || x >= half) return degree == 0 && x == -half ? 1 : 0;
  if (degree == 0) return 1;
  if (degree == 1) return 1 - std::abs(x);
  if (degree == 3) {
    const double a = std::abs(x);
    return a < 1 ? 2.0 / 3 - a * a * (1 - a / 2) : (2 - a) * (2 - a) * (2 - a) / 6;
  }
  return ((half + x) * spline(degree - 1, x + 0.5) + (half - x) * spline(degree - 1, x - 0.5)) /
         degree;
}

double splineSlope(int degree, double x) {
  return spline(degree - 1, x + 0.5) - spline(degree - 1, x - 0.5);
}

/// Bernstein polynomials of a degree, all at once.
void bernstein(int degree, double x, double* values) {
  values[0] = 1;
  for (int d = 1; d <= degree; ++d) {
    double carried = 0;
    for (int i = 0; i < d; ++i) {
      const double value = values[i];
      values[i] = carried + (1 - x) * value;
      carried = x * value;
    }
    values[d] = carried;
  }
}

}  // namespace

LatticeBasis::LatticeBasis(int count, int reach)
    : count_(std::max(count, 2)), reach_(std::max(reach, 0)) {}

void LatticeBasis::add(std::vector<double>& weights, int point, double weight) const {
  // A point beyond an end is mirrored: P[-k] = 2 P[0] - P[k].
  while (point < 0 || point >= count_) {
    const int end = point < 0 ? 0 : count_ - 1;
    weights[static_cast<std::size_t>(end)] += 2 * weight;
    weight = -weight;
    point = 2 * end - point;
  }
  weights[static_cast<std::size_t>(point)] += weight;
}

void LatticeBasis::inside(double place, std::vector<double>& weights, bool isSlope) const {
  weights.assign(static_cast<std::size_t>(count_), 0);
  const int spans = count_ - 1;
  if (reach_ == 0) {
    if (!isSlope) return bernstein(spans, place, weights.data());
    std::vector<double> lower(static_cast<std::size_t>(spans));
    bernstein(spans - 1, place, lower.data());
    for (int i = 0; i < spans; ++i) {
      const double slope = spans * lower[static_cast<std::size_t>(i)];
      weights[static_cast<std::size_t>(i)] -= slope;
      weights[static_cast<std::size_t>(i) + 1] += slope;
    }
    return;
  }
  const int degree = 2 * reach_ - 1;
  const double x = place * spans;
  const int middle = static_cast<int>(std::floor(x));
  for (int point = middle - reach_; point <= middle + reach_ + 1; ++point) {
    const double weight =
        isSlope ? spans * splineSlope(degree, x - point) : spline(degree, x - point);
    if (weight != 0) add(weights, point, weight);
  }
}

LatticeBasis::Range LatticeBasis::at(double place, std::vector<double>& weights) const {
  const double held = std::clamp(place, 0.0, 1.0);
  inside(held, weights, false);
  if (held != place) {
    std::vector<double> slopes;
    // The slope just inside: at the ends that of straight lines has two sides.
    inside(held == 0 ? 1e-9 : 1 - 1e-9, slopes, true);
    for (std::size_t i = 0; i < weights.size(); ++i) weights[i] += slopes[i] * (place - held);
  }
  Range range{count_, 0};
  for (int i = 0; i < count_; ++i)
    if (weights[static_cast<std::size_t>(i)] != 0) {
      range.first = std::min(range.first, i);
      range.last = i + 1;
    }
  return range;
}

}  // namespace host::math
