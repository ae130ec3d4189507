#pragma once

#include <vector>

#include "host/math/nurbs_curve.h"

namespace host::math {

/// What a surface does at a parameter: its place and the derivatives by the two parameters.
struct SurfaceFrame {
  Vec3 place, u, v, uu, uv, vv;
  /// The unit normal, right-handed from u to v; zero at a pole or a crease of no width.
  [[nodiscard]] Vec3 normal() const { return normalized(cross(u, v)); }
};

struct SurfaceParameter {
  double u = 0, v = 0;
};

/// A surface by rows of control points, as scene files store it: along V within a row, the rows
/// along U. Knots as for curves, one at each end left out. A periodic direction repeats its first
/// `degree` points or rows at the end.
struct NurbsSurface {
  int degreeU = 3, degreeV = 3;
  CurveForm formU = CurveForm::Open, formV = CurveForm::Open;
  std::vector<double> knotsU, knotsV;  ///< not descending
  std::vector<Vec3> points;            ///< cm; (u, v) at u * countV() + v
  std::vector<double> weights;         ///< empty: all 1

  [[nodiscard]] int countU() const { return static_cast<int>(knotsU.size()) - degreeU + 1; }
  [[nodiscard]] int countV() const { return static_cast<int>(knotsV.size()) - degreeV + 1; }
  [[nodiscard]] int spansU() const { return countU() - degreeU; }
  [[nodiscard]] int spansV() const { return countV() - degreeV; }
  [[nodiscard]] double firstU() const { return knotsU[static_cast<std::size_t>(degreeU) - 1]; }
  [[nodiscard]] double firstV() const { return knotsV[static_cast<std::size_t>(degreeV) - 1]; }
  [[nodiscard]] double lastU() const { return knotsU[static_cast<std::size_t>(countU()) - 1]; }
  [[nodiscard]] double lastV() const { return knotsV[static_cast<std::size_t>(countV()) - 1]; }
  [[nodiscard]] bool isRational() const { return !weights.empty(); }
  friend bool operator==(const NurbsSurface&, const NurbsSurface&) = default;

  /// The place and the derivatives at a parameter, kept within the domain (Piegl and Tiller,
  /// algorithms A2.3 and A4.4).
  [[nodiscard]] SurfaceFrame frame(double u, double v) const;
  [[nodiscard]] Vec3 at(double u, double v) const { return frame(u, v).place; }
  /// The parameter of the nearest place: by samples of every patch, then by Newton's method.
  [[nodiscard]] SurfaceParameter closest(const Vec3& place) const;
  [[nodiscard]] SurfaceParameter closest(const Vec3& place, SurfaceParameter start) const;
  /// Gauss quadrature in every patch.
  [[nodiscard]] double area() const;
};

/// What is wrong with a surface, or nothing: see the check of curves.
[[nodiscard]] Result<void> check(const NurbsSurface& surface);

/// The knots of a direction that lie within the domain, each once.
[[nodiscard]] std::vector<double> breaksU(const NurbsSurface& surface);
[[nodiscard]] std::vector<double> breaksV(const NurbsSurface& surface);

/// The parameters that cut every piece between neighbouring `breaks` into `parts`, ends included.
[[nodiscard]] std::vector<double> spread(const std::vector<double>& breaks, int parts);

/// Where a ray meets a surface.
struct SurfaceHit {
  SurfaceParameter parameter;
  Vec3 place;
  double distance = 0;  ///< in lengths of the direction
};
/// All places where a ray meets the surface, the nearest first: Newton's method from the middle of
/// every piece of a patch that comes near the ray.
[[nodiscard]] std::vector<SurfaceHit> intersect(const NurbsSurface& surface, const Vec3& start,
                                                const Vec3& direction);

/// A plane across `normal` (Y when it has no length), `width` by `width * ratio`.
struct NurbsPlaneOptions {
  Vec3 center = {}, normal = {1, 0, 0};
  double width = 1;  ///< along U, cm
  double ratio = 1;  ///< of the length along V to the width
  int degree = 3;    ///< 1, 2, 3, 5 or 7
  int patchesU = 1, patchesV = 1;
};
[[nodiscard]] NurbsSurface nurbsPlane(const NurbsPlaneOptions& options);

}  // namespace host::math
