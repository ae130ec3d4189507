#pragma once

#include <vector>

#include "host/base/result.h"
#include "host/math/vec.h"

namespace host::math {

enum class CurveForm { Open = 0, Closed = 1, Periodic = 2 };

/// A curve by control points, weights and knots, as scene files store it: one knot at each end is
/// left out, so there are points + degree - 1 of them. A periodic curve repeats its first `degree`
/// points at the end.
struct NurbsCurve {
  int degree = 3;
  CurveForm form = CurveForm::Open;
  std::vector<double> knots;    ///< not descending
  std::vector<Vec3> points;     ///< cm
  std::vector<double> weights;  ///< empty: all 1

  [[nodiscard]] int spans() const { return static_cast<int>(points.size()) - degree; }
  [[nodiscard]] double first() const { return knots[static_cast<std::size_t>(degree) - 1]; }
  [[nodiscard]] double last() const { return knots[points.size() - 1]; }
  [[nodiscard]] bool isRational() const { return !weights.empty(); }
  friend bool operator==(const NurbsCurve&, const NurbsCurve&) = default;

  /// The place at a parameter, kept within the domain (de Boor's algorithm).
  [[nodiscard]] Vec3 at(double parameter) const;
  /// The derivative by the parameter, `order` 1 or 2.
  [[nodiscard]] Vec3 derivative(double parameter, int order = 1) const;
  /// The length of the way between two parameters; Gauss quadrature in every span, halved until
  /// both halves agree.
  [[nodiscard]] double length(double from, double to) const;
  [[nodiscard]] double length() const { return length(first(), last()); }
  /// The parameter at a length from the start, kept within the curve.
  [[nodiscard]] double parameterAtLength(double wanted) const;
  /// The parameter of the nearest place: by samples of every span, then by Newton's method.
  [[nodiscard]] double closest(const Vec3& place) const;
};

/// What is wrong with a curve, or nothing: counts that do not fit, descending knots, numbers that
/// are not finite, weights that are not positive.
[[nodiscard]] Result<void> check(const NurbsCurve& curve);

/// Knots that are uniform within and repeated at the ends of an open curve.
[[nodiscard]] std::vector<double> uniformKnots(int degree, std::size_t points, CurveForm form);

/// A curve of a degree through the points, by chord length (Piegl and Tiller, ch. 9.2).
[[nodiscard]] Result<NurbsCurve> curveThrough(const std::vector<Vec3>& places, int degree);

/// A circle or an arc in the plane across `normal`: of degree 1 or 3, that many spans. Cubic ones
/// are periodic, no farther than a thousandth of the radius from round with eight spans.
[[nodiscard]] NurbsCurve circleCurve(double radius, int degree, int sections, const Vec3& center,
                                     const Vec3& normal);

}  // namespace host::math
