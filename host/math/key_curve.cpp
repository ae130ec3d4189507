#include "host/math/key_curve.h"

#include <algorithm>
#include <cmath>

namespace host::math {

namespace {

double secant(const Key& a, const Key& b) {
  return (b.value - a.value) / (b.time - a.time);
}

/// Whether a key lies higher or lower than both of its neighbours, or level with one.
bool isExtreme(const Key& before, const Key& key, const Key& after) {
  return (key.value - before.value) * (after.value - key.value) <= 0;
}

/// Where the cubic with these control numbers reaches `x`, for controls that do not run back.
double solveBezier(double x0, double x1, double x2, double x3, double x) {
  double low = 0, high = 1;
  for (int round = 0; round < 60; ++round) {
    const double t = 0.5 * (low + high), s = 1 - t;
    const double at = s * s * s * x0 + 3 * s * s * t * x1 + 3 * s * t * t * x2 + t * t * t * x3;
    (at < x ? low : high) = t;
  }
  return 0.5 * (low + high);
}

}  // namespace

double KeyCurve::slope(std::size_t index, bool incoming) const {
  const Key& key = keys[index];
  const KeyTangent type = incoming ? key.in : key.out;
  const bool isFirst = index == 0, isLast = index + 1 == keys.size();
  const double toLeft = isFirst ? 0 : secant(keys[index - 1], key);
  const double toRight = isLast ? 0 : secant(key, keys[index + 1]);
  const double across = isFirst  ? toRight
                        : isLast ? toLeft
                                 : secant(keys[index - 1], keys[index + 1]);
  const double own = incoming ? (isFirst ? toRight : toLeft) : (isLast ? toLeft : toRight);
  switch (type) {
    case KeyTangent::Fixed: {
      const double x = incoming ? key.inX : key.outX, y = incoming ? key.inY : key.outY;
      return x > 0 ? y / x : 0;
    }
    case KeyTangent::Linear:
      return own;
    case KeyTangent::Flat:
    case KeyTangent::Step:
    case KeyTangent::StepNext:
      return 0;
    case KeyTangent::Slow:
    case KeyTangent::Fast:
      return (type == KeyTangent::Slow) == incoming ? 0 : 2 * own;
    case KeyTangent::Smooth:
    case KeyTangent::Spline:
      return across;
    case KeyTangent::Clamped: {
      constexpr double kNear = 0.05;
      const auto isNear = [&](const Key& other) {
        return std::abs(other.value - key.value) < kNear * std::abs(other.time - key.time);
      };
      if ((!isFirst && isNear(keys[index - 1])) || (!isLast && isNear(keys[index + 1]))) return 0;
      return across;
    }
    case KeyTangent::Plateau:
    case KeyTangent::Auto:
      break;
  }
  if (isFirst || isLast || isExtreme(keys[index - 1], key, keys[index + 1])) return 0;
  const double limit = 3 * std::min(std::abs(toLeft), std::abs(toRight));
  return std::clamp(across, -limit, limit);
}

double KeyCurve::within(double time) const {
  const auto right = std::ranges::upper_bound(keys, time, {}, &Key::time);
  if (right == keys.end()) return keys.back().value;
  const auto index = static_cast<std::size_t>(right - keys.begin());
  const Key &a = keys[index - 1], &b = *right;
  if (time == a.time) return a.value;
  if (a.out == KeyTangent::Step) return a.value;
  if (a.out == KeyTangent::StepNext) return b.value;
  const double span = b.time - a.time;
  const double start = slope(index - 1, false), end = slope(index, true);
  double reachA = span, reachB = span;
  if (isWeighted) {
    // Handles that would pass each other's key are cut, so that each time has one value.
    if (a.out == KeyTangent::Fixed) reachA = std::clamp(a.outX, 0.0, 3 * span);
    if (b.in == KeyTangent::Fixed) reachB = std::clamp(b.inX, 0.0, 3 * span);
  }
  const double x1 = a.time + reachA / 3, x2 = b.time - reachB / 3;
  const double y1 = a.value + start * reachA / 3, y2 = b.value - end * reachB / 3;
  const bool isEven = reachA == span && reachB == span;
  const double t = isEven ? (time - a.time) / span : solveBezier(a.time, x1, x2, b.time, time);
  const double s = 1 - t;
  return s * s * s * a.value + 3 * s * s * t * y1 + 3 * s * t * t * y2 + t * t * t * b.value;
}

double KeyCurve::outside(double time, KeyInfinity how, bool isAfter) const {
  const Key &first = keys.front(), &last = keys.back();
  const Key& edge = isAfter ? last : first;
  const double length = last.time - first.time;
  if (how == KeyInfinity::Constant || length <= 0) return edge.value;
  if (how == KeyInfinity::Linear) {
    const double rate = isAfter ? slope(keys.size() - 1, false) : slope(0, true);
    return edge.value + rate * (time - edge.time);
  }
  const double turns = std::floor((time - first.time) / length);
  double place = time - turns * length;
  if (how == KeyInfinity::Oscillate && std::fmod(std::abs(turns), 2) == 1)
    place = last.time - (place - first.time);
  const double value = within(std::clamp(place, first.time, last.time));
  return how == KeyInfinity::CycleRelative ? value + turns * (last.value - first.value) : value;
}

double KeyCurve::at(double time) const {
  if (keys.empty() || !std::isfinite(time)) return 0;
  if (time < keys.front().time) return outside(time, before, false);
  if (time > keys.back().time) return outside(time, after, true);
  return within(time);
}

}  // namespace host::math
