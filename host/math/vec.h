#pragma once

#include <cmath>

namespace host::math {

/// A pair of coordinates, as stored in UV arrays.
struct Vec2f {
  float u = 0, v = 0;
  friend bool operator==(const Vec2f&, const Vec2f&) = default;
};

/// Three single-precision coordinates: the storage form of points and normals.
struct Vec3f {
  float x = 0, y = 0, z = 0;
  friend bool operator==(const Vec3f&, const Vec3f&) = default;
};

/// Three double-precision coordinates: the computing form of points, directions and Euler triples.
struct Vec3 {
  double x = 0, y = 0, z = 0;

  constexpr Vec3() = default;
  constexpr Vec3(double xIn, double yIn, double zIn) : x(xIn), y(yIn), z(zIn) {}
  constexpr explicit Vec3(const Vec3f& f) : x(f.x), y(f.y), z(f.z) {}
  [[nodiscard]] Vec3f toFloat() const {
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  }
  [[nodiscard]] double operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
  [[nodiscard]] double& operator[](int axis) { return axis == 0 ? x : axis == 1 ? y : z; }

  Vec3& operator+=(const Vec3& o) {
    x += o.x;
    y += o.y;
    z += o.z;
    return *this;
  }
  Vec3& operator-=(const Vec3& o) {
    x -= o.x;
    y -= o.y;
    z -= o.z;
    return *this;
  }
  Vec3& operator*=(double s) {
    x *= s;
    y *= s;
    z *= s;
    return *this;
  }
  friend Vec3 operator+(Vec3 a, const Vec3& b) { return a += b; }
  friend Vec3 operator-(Vec3 a, const Vec3& b) { return a -= b; }
  friend Vec3 operator-(const Vec3& a) { return {-a.x, -a.y, -a.z}; }
  friend Vec3 operator*(Vec3 a, double s) { return a *= s; }
  friend Vec3 operator*(double s, Vec3 a) { return a *= s; }
  friend Vec3 operator/(Vec3 a, double s) { return a *= 1.0 / s; }
  friend bool operator==(const Vec3&, const Vec3&) = default;
};

[[nodiscard]] inline double dot(const Vec3& a, const Vec3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
[[nodiscard]] inline Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
[[nodiscard]] inline double lengthSquared(const Vec3& a) {
  return dot(a, a);
}
[[nodiscard]] inline double length(const Vec3& a) {
  return std::sqrt(dot(a, a));
}
[[nodiscard]] inline double distance(const Vec3& a, const Vec3& b) {
  return length(a - b);
}

/// Scales to unit length; the zero vector stays zero.
[[nodiscard]] inline Vec3 normalized(const Vec3& a) {
  const double l = length(a);
  return l > 0 ? a / l : a;
}

[[nodiscard]] inline bool isFinite(const Vec3& a) {
  return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

}  // namespace host::math
