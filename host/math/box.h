#pragma once

#include <algorithm>
#include <limits>

#include "host/math/matrix4.h"

namespace host::math {

/// An axis-aligned bounding box; empty (no point, min > max) until something is added.
struct Box {
  static constexpr double kInfinity = std::numeric_limits<double>::infinity();
  Vec3 min{kInfinity, kInfinity, kInfinity};
  Vec3 max{-kInfinity, -kInfinity, -kInfinity};

  Box() = default;
  Box(const Vec3& minIn, const Vec3& maxIn) : min(minIn), max(maxIn) {}

  [[nodiscard]] bool isEmpty() const {
    return !(min.x <= max.x && min.y <= max.y && min.z <= max.z);
  }
  /// Grows to hold a point. Coordinates that are NaN add nothing.
  void add(const Vec3& p) {
    for (int i = 0; i < 3; ++i) {
      if (p[i] < min[i]) min[i] = p[i];
      if (p[i] > max[i]) max[i] = p[i];
    }
  }
  void add(const Box& o) {
    for (int i = 0; i < 3; ++i) {
      min[i] = std::min(min[i], o.min[i]);
      max[i] = std::max(max[i], o.max[i]);
    }
  }
  /// Grows by a margin on all sides.
  void inflate(double margin) {
    if (isEmpty()) return;
    min -= Vec3{margin, margin, margin};
    max += Vec3{margin, margin, margin};
  }
  [[nodiscard]] Vec3 center() const { return isEmpty() ? Vec3{} : (min + max) * 0.5; }
  [[nodiscard]] Vec3 size() const { return isEmpty() ? Vec3{} : max - min; }
  [[nodiscard]] double diagonal() const { return length(size()); }
  [[nodiscard]] bool contains(const Vec3& p) const {
    return p.x >= min.x && p.x <= max.x && p.y >= min.y && p.y <= max.y && p.z >= min.z &&
           p.z <= max.z;
  }
  [[nodiscard]] bool intersects(const Box& o) const {
    return min.x <= o.max.x && o.min.x <= max.x && min.y <= o.max.y && o.min.y <= max.y &&
           min.z <= o.max.z && o.min.z <= max.z;
  }
  /// Squared distance from a point to the box; 0 inside.
  [[nodiscard]] double distanceSquared(const Vec3& p) const {
    double sum = 0;
    for (int i = 0; i < 3; ++i) {
      const double d = std::max({min[i] - p[i], 0.0, p[i] - max[i]});
      sum += d * d;
    }
    return sum;
  }
  /// The box around the transformed eight corners.
  [[nodiscard]] Box transformed(const Matrix4& m) const {
    Box out;
    if (isEmpty()) return out;
    for (int i = 0; i < 8; ++i)
      out.add(
          transformPoint({i & 1 ? max.x : min.x, i & 2 ? max.y : min.y, i & 4 ? max.z : min.z}, m));
    return out;
  }
  friend bool operator==(const Box&, const Box&) = default;
};

}  // namespace host::math
