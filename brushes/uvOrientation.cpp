#include "brushes/uvOrientation.h"

#include <algorithm>
#include <cmath>

namespace {

/// Adds without rounding: the sum is `high` + `low`.
void addExactly(double a, double b, double& high, double& low) {
  high = a + b;
  const double bPart = high - a, aPart = high - bPart;
  low = (a - aPart) + (b - bPart);
}

/// The sign of a sum of products of two floats each, which a double holds without rounding.
int signOfSum(const double (&products)[6]) {
  double parts[6];
  int count = 0;
  for (const double product : products) {
    double rest = product;
    for (int i = 0; i < count; ++i) {
      double low = 0.0;
      addExactly(rest, parts[i], rest, low);
      parts[i] = low;
    }
    parts[count++] = rest;
  }
  // The parts don't overlap and grow: the last that is not zero outweighs all before it.
  for (int i = count; i-- > 0;)
    if (parts[i] != 0.0) return parts[i] > 0.0 ? 1 : -1;
  return 0;
}

/// The determinant in double precision, and the sum of its terms' sizes.
double determinant(const float* a, const float* b, const float* c, double& size) {
  const double left = (static_cast<double>(b[0]) - a[0]) * (static_cast<double>(c[1]) - a[1]);
  const double right = (static_cast<double>(b[1]) - a[1]) * (static_cast<double>(c[0]) - a[0]);
  size = std::fabs(left) + std::fabs(right);
  return left - right;
}

}  // namespace

int orientation(const float* a, const float* b, const float* c) {
  double size = 0.0;
  const double quick = determinant(a, b, c, size);
  constexpr double kRounding = 3.3306690738754716e-16;  // (3 + 16 eps) eps
  if (std::fabs(quick) > kRounding * size) return quick > 0.0 ? 1 : -1;
  const double ax = a[0], ay = a[1], bx = b[0], by = b[1], cx = c[0], cy = c[1];
  return signOfSum({ax * by, -(ay * bx), bx * cy, -(by * cx), cx * ay, -(cy * ax)});
}

faceFirmness firmness(const float* a, const float* b, const float* c, int sign) {
  if (orientation(a, b, c) != sign) return kTurnedOver;
  double size = 0.0;
  const double area = std::fabs(determinant(a, b, c, size));
  float largest = 0.0F;
  for (const float* place : {a, b, c})
    largest = std::max({largest, std::fabs(place[0]), std::fabs(place[1])});
  const double reach = std::max(
      {std::fabs(static_cast<double>(b[0]) - a[0]), std::fabs(static_cast<double>(b[1]) - a[1]),
       std::fabs(static_cast<double>(c[0]) - a[0]), std::fabs(static_cast<double>(c[1]) - a[1])});
  // On its way to the mesh a number is rounded three times, by half a unit in its last place each.
  constexpr double kThreeRoundings = 3.0 / (1 << 24);
  return area > 8.0 * kThreeRoundings * largest * reach ? kFirm : kThin;
}
