#pragma once

#include <algorithm>
#include <cmath>

namespace host::math {

inline constexpr double kPi = 3.14159265358979323846;

/// Two points of a model this close are one: below what single precision resolves in a model of a
/// metre. cm.
inline constexpr double kPointTolerance = 1e-6;
/// Directions whose sine differs by less are parallel.
inline constexpr double kAngleTolerance = 1e-9;

[[nodiscard]] constexpr double toRadians(double degrees) {
  return degrees * (kPi / 180.0);
}
[[nodiscard]] constexpr double toDegrees(double radians) {
  return radians * (180.0 / kPi);
}

/// Whether a and b differ by at most `tolerance`, absolute near zero and relative above one.
[[nodiscard]] inline bool isClose(double a, double b, double tolerance = 1e-10) {
  return std::abs(a - b) <= tolerance * std::max({1.0, std::abs(a), std::abs(b)});
}

}  // namespace host::math
