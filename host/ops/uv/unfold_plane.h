#pragma once

#include <array>
#include <cmath>
#include <vector>

#include "host/base/ids.h"
#include "host/math/vec.h"

namespace host::ops::flat {

/// A point of the plane in double precision.
struct Point {
  double x = 0, y = 0;
  friend Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
  friend Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
  friend Point operator*(double s, Point a) { return {s * a.x, s * a.y}; }
  friend bool operator==(const Point&, const Point&) = default;
};
[[nodiscard]] inline double dot(Point a, Point b) {
  return a.x * b.x + a.y * b.y;
}
[[nodiscard]] inline double cross(Point a, Point b) {
  return a.x * b.y - a.y * b.x;
}
[[nodiscard]] inline double length(Point a) {
  return std::sqrt(dot(a, a));
}
/// Twice the signed area of a triangle, positive counter-clockwise.
[[nodiscard]] inline double doubleArea(Point a, Point b, Point c) {
  return cross(b - a, c - a);
}

/// Local vertex numbers of a triangle, in the direction of its face.
using Triangle = std::array<Index, 3>;

/// On which side of a to b the point c lies, without rounding: 1 left, -1 right, 0 on the line.
/// Exact for all finite floats; coordinates below 1e-19 may underflow.
[[nodiscard]] int orientation(math::Vec2f a, math::Vec2f b, math::Vec2f c);
/// The same for doubles, by a bound on the rounding error: 0 also where it cannot be told.
[[nodiscard]] int orientation(Point a, Point b, Point c);

/// Whether two closed segments touch or cross. Segments too close to tell count as touching.
[[nodiscard]] bool segmentsTouch(Point a, Point b, Point c, Point d);

}  // namespace host::ops::flat
