#pragma once

#include <span>
#include <vector>

#include "host/ops/uv/unfold_plane.h"

namespace host::ops::flat {

/// What flattening a triangle costs, per area of the triangle at rest, from the two invariants of
/// its map F: a = |F|^2 and d = det F. All parts grow without bound as the triangle loses its area.
///
/// `symmetric` weighs the symmetric Dirichlet energy a + a/d^2 (4 at best; Smith and Schaefer
/// 2015), `lengths` the square of Green's strain |F'F - I|^2, which keeps edge lengths, and `areas`
/// (d - 1)^2 (1 + 1/d^2), which keeps areas.
///
/// With `softness` above 0 it is instead (a + 1 + d^2) / c, where c is d for large d and small but
/// positive for negative d: an energy that turned triangles have too, and that turns them back.
struct Energy {
  double symmetric = 1, lengths = 0, areas = 0;
  double softness = 0;

  [[nodiscard]] double value(double a, double d) const {
    if (softness > 0) return (a + 1 + d * d) / soft(d);
    const double inverse = 1 / (d * d);
    double sum = symmetric * a * (1 + inverse);
    if (lengths != 0) sum += lengths * (a * a - 2 * d * d - 2 * a + 2);
    if (areas != 0) sum += areas * (d - 1) * (d - 1) * (1 + inverse);
    return sum;
  }
  /// Derivatives by a and d: first, then second.
  struct Slopes {
    double a, d, aa, ad, dd;
  };
  [[nodiscard]] Slopes slopes(double a, double d) const {
    if (softness > 0) return softSlopes(a, d);
    const double i1 = 1 / d, i2 = i1 * i1, i3 = i2 * i1;
    Slopes s{symmetric * (1 + i2), -2 * symmetric * a * i3, 0, -2 * symmetric * i3,
             6 * symmetric * a * i2 * i2};
    if (lengths != 0) {
      s.a += lengths * (2 * a - 2);
      s.aa += 2 * lengths;
      s.d -= 4 * lengths * d;
      s.dd -= 4 * lengths;
    }
    if (areas != 0) {
      s.d += areas * (2 * d - 2 + 2 * i2 - 2 * i3);
      s.dd += areas * (2 - 4 * i3 + 6 * i2 * i2);
    }
    return s;
  }

 private:
  [[nodiscard]] double soft(double d) const {
    const double root = std::sqrt(d * d + softness * softness);
    // For negative d the sum cancels; the other form of it does not.
    return d >= 0 ? 0.5 * (d + root) : 0.5 * softness * softness / (root - d);
  }
  [[nodiscard]] Slopes softSlopes(double a, double d) const {
    const double root = std::sqrt(d * d + softness * softness), c = soft(d);
    const double c1 = c / root, c2 = 0.5 * softness * softness / (root * root * root);
    const double n = a + 1 + d * d, i = 1 / c, i2 = i * i;
    return {i, 2 * d * i - n * c1 * i2, 0, -c1 * i2,
            2 * i - 4 * d * c1 * i2 + n * (2 * c1 * c1 * i2 * i - c2 * i2)};
  }
};

/// A triangle with its shape at rest, ready for evaluating: F = sum over corners of x_c b_c', where
/// b_1 = (b1x, b1y), b_2 = (0, b2y) and b_0 = -b_1 - b_2.
struct Element {
  Triangle corners;
  double b1x, b1y, b2y;
  double weight;  ///< area at rest unless asked otherwise
  /// The factor of one corner's position.
  [[nodiscard]] Point factor(int corner) const {
    if (corner == 1) return {b1x, b1y};
    if (corner == 2) return {0, b2y};
    return {-b1x, -b1y - b2y};
  }
};

/// The map of an element at given positions, row by row.
struct Jacobian {
  double xx, xy, yx, yy;
  [[nodiscard]] double norm2() const { return xx * xx + xy * xy + yx * yx + yy * yy; }
  [[nodiscard]] double det() const { return xx * yy - xy * yx; }
};
[[nodiscard]] inline Jacobian jacobian(const Element& e, std::span<const Point> x) {
  const Point o = x[at(e.corners[0])];
  const Point p = x[at(e.corners[1])] - o;
  const Point q = x[at(e.corners[2])] - o;
  return {p.x * e.b1x, p.x * e.b1y + q.x * e.b2y, p.y * e.b1x, p.y * e.b1y + q.y * e.b2y};
}

/// Makes an element from a triangle's points at rest; one too thin is given a little height, so
/// that it stays a triangle.
[[nodiscard]] Element restElement(const Triangle& corners, const math::Vec3& a, const math::Vec3& b,
                                  const math::Vec3& c);
/// The elements of triangles over points at rest, weighing their areas.
[[nodiscard]] std::vector<Element> restElements(std::span<const Triangle> triangles,
                                                std::span<const math::Vec3> points);
/// The weighted sum of energies over the sum of weights; infinite where an element has no area
/// left.
[[nodiscard]] double meanEnergy(const Energy& energy, std::span<const Element> elements,
                                std::span<const Point> x);
/// The factor of the positions at which their mean symmetric Dirichlet energy is least.
[[nodiscard]] double bestScale(std::span<const Element> elements, std::span<const Point> x);

}  // namespace host::ops::flat
