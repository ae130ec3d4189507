#pragma once

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
}  // namespace host::math
