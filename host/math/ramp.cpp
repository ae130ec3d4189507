#include "host/math/ramp.h"

#include <algorithm>

namespace host::math {

std::array<double, 3> rampAt(std::vector<RampEntry> entries, double position) {
  if (entries.empty()) return {};
  std::ranges::stable_sort(entries, {}, &RampEntry::position);
  const auto right = std::ranges::upper_bound(entries, position, {}, &RampEntry::position);
  if (right == entries.begin()) return entries.front().value;
  if (right == entries.end()) return entries.back().value;
  const auto index = static_cast<std::size_t>(right - entries.begin());
  const RampEntry &a = entries[index - 1], &b = entries[index];
  double t = (position - a.position) / (b.position - a.position);
  if (a.interpolation == RampInterpolation::None) return a.value;
  if (a.interpolation == RampInterpolation::Smooth) t = t * t * (3 - 2 * t);
  const RampEntry& before = index >= 2 ? entries[index - 2] : a;
  const RampEntry& after = index + 1 < entries.size() ? entries[index + 1] : b;
  std::array<double, 3> result{};
  for (std::size_t i = 0; i < 3; ++i) {
    if (a.interpolation != RampInterpolation::Spline) {
      result[i] = a.value[i] + (b.value[i] - a.value[i]) * t;
      continue;
    }
    const double start = 0.5 * (b.value[i] - before.value[i]),
                 end = 0.5 * (after.value[i] - a.value[i]);
    const double s = 1 - t;
    result[i] = a.value[i] * (1 + 2 * t) * s * s + b.value[i] * t * t * (3 - 2 * t) +
                start * t * s * s - end * t * t * s;
  }
  return result;
}

}  // namespace host::math
