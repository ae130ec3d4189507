#include "host/ops/uv/unfold_plane.h"

#include <algorithm>
#include <limits>

namespace host::ops::flat {
namespace {

/// Adds a number to an expansion of non-overlapping parts without rounding (Shewchuk 1997).
void grow(std::array<double, 7>& parts, int& count, double number) {
  double sum = number;
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    const double part = parts[at(i)];
    const double high = sum + part;
    const double virtualPart = high - sum;
    const double low = (sum - (high - virtualPart)) + (part - virtualPart);
    sum = high;
    if (low != 0) parts[at(kept++)] = low;
  }
  parts[at(kept++)] = sum;
  count = kept;
}

int signOf(double value) {
  return value > 0 ? 1 : value < 0 ? -1 : 0;
}

constexpr double kRounding = 8 * std::numeric_limits<double>::epsilon();

}  // namespace

int orientation(math::Vec2f a, math::Vec2f b, math::Vec2f c) {
  const double ax = a.u, ay = a.v, bx = b.u, by = b.v, cx = c.u, cy = c.v;
  const double left = (bx - ax) * (cy - ay), right = (by - ay) * (cx - ax);
  const double det = left - right;
  if (std::abs(det) > kRounding * (std::abs(left) + std::abs(right))) return signOf(det);
  // Products of floats are exact in double; only their sum needs care.
  std::array<double, 7> parts{};
  int count = 0;
  for (const double product : {bx * cy, -bx * ay, -ax * cy, -by * cx, by * ax, ay * cx})
    grow(parts, count, product);
  return signOf(parts[at(count - 1)]);
}

int orientation(Point a, Point b, Point c) {
  const double left = (b.x - a.x) * (c.y - a.y), right = (b.y - a.y) * (c.x - a.x);
  const double det = left - right;
  const double size = std::abs(left) + std::abs(right);
  return std::abs(det) > kRounding * size ? signOf(det) : 0;
}

bool segmentsTouch(Point a, Point b, Point c, Point d) {
  if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
      std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
    return false;
  return orientation(a, b, c) * orientation(a, b, d) <= 0 &&
         orientation(c, d, a) * orientation(c, d, b) <= 0;
}

}  // namespace host::ops::flat
