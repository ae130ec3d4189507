// Weights of the points of a lattice along one axis, against what they are for.
#include "host/math/lattice_basis.h"

#include <doctest/doctest.h>

#include <cmath>

using host::math::LatticeBasis;

namespace {

double sumOf(const std::vector<double>& weights, double (*value)(double)) {
  double sum = 0;
  for (std::size_t i = 0; i < weights.size(); ++i)
    sum += weights[i] * value(static_cast<double>(i) / static_cast<double>(weights.size() - 1));
  return sum;
}

}  // namespace

TEST_CASE("a lattice at rest, or moved as a whole, moves all alike, inside and outside") {
  std::vector<double> weights;
  for (const int count : {2, 3, 5, 9})
    for (const int reach : {0, 1, 2, 3, 4})
      for (const double place : {-0.75, 0.0, 0.1, 1.0 / 3, 0.5, 0.9, 1.0, 1.5}) {
        CAPTURE(count);
        CAPTURE(reach);
        CAPTURE(place);
        const auto range = LatticeBasis(count, reach).at(place, weights);
        CHECK(sumOf(weights, [](double) { return 1.0; }) == doctest::Approx(1));
        CHECK(std::abs(sumOf(weights, [](double x) { return x; }) - place) < 1e-6);
        CHECK(range.first >= 0);
        CHECK(range.last <= count);
      }
}

TEST_CASE("ends are reached, and points count as far as they reach") {
  std::vector<double> weights;
  for (const int reach : {0, 1, 2, 3}) {
    LatticeBasis(5, reach).at(1, weights);
    CHECK(weights[4] == doctest::Approx(1));
    CHECK(std::abs(weights[3]) < 1e-12);
  }
  LatticeBasis(9, 2).at(0.5, weights);
  CHECK(weights[4] == doctest::Approx(2.0 / 3));
  CHECK(weights[3] == doctest::Approx(1.0 / 6));
  CHECK(weights[2] == 0);
  LatticeBasis(9, 1).at(0.4375, weights);
  CHECK(weights[3] == doctest::Approx(0.5));
  CHECK(weights[4] == doctest::Approx(0.5));
  LatticeBasis(3, 0).at(0.5, weights);
  CHECK(weights[0] == doctest::Approx(0.25));
  CHECK(weights[1] == doctest::Approx(0.5));
}
