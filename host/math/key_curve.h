#pragma once

#include <cstdint>
#include <vector>

namespace host::math {

/// How a curve runs through a key on one side. The numbers are those of scene files.
enum class KeyTangent : std::uint8_t {
  Fixed = 1,
  Linear = 2,
  Flat = 3,
  Smooth = 4,
  Step = 5,
  Slow = 6,
  Fast = 7,
  Spline = 9,
  Clamped = 10,
  Plateau = 16,
  StepNext = 17,
  Auto = 18,
};

/// What comes before the first key and after the last one.
enum class KeyInfinity : std::uint8_t {
  Constant = 0,
  Linear = 1,
  Cycle = 3,
  CycleRelative = 4,
  Oscillate = 5
};

struct Key {
  double time = 0, value = 0;  ///< any units, the same for all keys of a curve
  KeyTangent in = KeyTangent::Auto, out = KeyTangent::Auto;
  // Of fixed tangents: run and rise towards the next key, and from the one before.
  double inX = 1, inY = 0, outX = 1, outY = 0;
};

/// A value over time through keys.
///
/// Without weights the pieces are cubic Hermite curves. With weights they are Bezier curves in the
/// plane whose handles are a third of the tangents, and time is solved for. Smooth and spline
/// tangents take the slope between the neighbours; clamped ones too, unless a neighbour has nearly
/// the same value; plateau ones are flat at extremes and at the ends; automatic ones are plateau
/// tangents whose slope is kept below three times that of either side (Fritsch and Carlson 1980),
/// so that nothing overshoots.
struct KeyCurve {
  std::vector<Key> keys;  ///< ascending times, no two alike
  KeyInfinity before = KeyInfinity::Constant, after = KeyInfinity::Constant;
  bool isWeighted = false;

  /// The value at a time; 0 without keys. Logarithmic in the keys within their range.
  [[nodiscard]] double at(double time) const;
  /// The slope on one side of a key.
  [[nodiscard]] double slope(std::size_t key, bool incoming) const;

 private:
  [[nodiscard]] double within(double time) const;
  [[nodiscard]] double outside(double time, KeyInfinity how, bool isAfter) const;
};

}  // namespace host::math
