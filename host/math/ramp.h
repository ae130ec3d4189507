#pragma once

#include <array>
#include <vector>

namespace host::math {

/// How a ramp goes from one entry to the next. The numbers are those that attributes store.
enum class RampInterpolation { None = 0, Linear = 1, Smooth = 2, Spline = 3 };

struct RampEntry {
  double position = 0;
  std::array<double, 3> value{};  ///< a number in the first place, or a colour
  RampInterpolation interpolation = RampInterpolation::Linear;
};

/// The ramp's value at a position; outside the entries the nearest one's, zero without entries. A
/// spline is a Catmull-Rom curve through the entries. Entries may come in any order.
[[nodiscard]] std::array<double, 3> rampAt(std::vector<RampEntry> entries, double position);

}  // namespace host::math
