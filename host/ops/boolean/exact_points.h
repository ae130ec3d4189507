#pragma once

#include <array>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/math/vec.h"
#include "host/ops/boolean/exact_integer.h"

namespace host::ops {

/// A place on the grid that exact geometry is done on.
using GridPoint = std::array<std::int64_t, 3>;
using GridVector = std::array<Int128, 3>;
using PointId = Index;

/// A rational point (x, y, z) / w in grid units, w > 0.
struct ExactPoint {
  std::array<ExactInteger, 3> x;
  ExactInteger w;
};

/// A plane n . p = d in grid units.
struct ExactPlane {
  std::array<ExactInteger, 3> n;
  ExactInteger d;
};

/// The normal of a grid triangle, twice its area long. Exact.
[[nodiscard]] GridVector gridNormal(const GridPoint& a, const GridPoint& b, const GridPoint& c);
/// Positive where `d` lies on the side of abc that its normal points to, 0 in its plane; six times
/// the volume. Exact.
[[nodiscard]] Int128 orient3d(const GridPoint& a, const GridPoint& b, const GridPoint& c,
                              const GridPoint& d);
/// Positive where abc turns to the left seen along the falling axis: in the plane of the two
/// others, in cyclic order. Twice the area; exact.
[[nodiscard]] Int128 orient2d(const GridPoint& a, const GridPoint& b, const GridPoint& c, int axis);
[[nodiscard]] inline int signOf(Int128 value) {
  return value < 0 ? -1 : value > 0 ? 1 : 0;
}
/// The plane of a grid triangle with that normal.
[[nodiscard]] ExactPlane planeThrough(const GridPoint& a,
                                      const std::array<ExactInteger, 3>& normal);
/// The one point on three planes that have one in common.
[[nodiscard]] ExactPoint commonPoint(const ExactPlane& a, const ExactPlane& b, const ExactPlane& c);

/// The points of a boolean operation, each place once however it was come by: vertices, rounded to
/// a grid of 2^-30 of the largest coordinate, and the rational points where edges and faces meet.
/// Floats within a hundredth of the largest coordinate and above lie on the grid as they are, so
/// what was in one plane along an axis stays so.
class ExactPoints {
 public:
  /// Takes the vertices. @return an error when a coordinate is not finite
  [[nodiscard]] Result<void> setVertices(std::span<const math::Vec3f> vertices);

  [[nodiscard]] PointId ofVertex(VertexId v) const { return vertexPoints_[at(v)]; }
  [[nodiscard]] bool isGridPoint(PointId p) const { return at(p) < grid_.size(); }
  [[nodiscard]] const GridPoint& grid(PointId p) const { return grid_[at(p)]; }
  [[nodiscard]] std::size_t size() const { return grid_.size() + made_.size(); }

  /// The point between two grid points where a function that is linear along the edge and has
  /// these values at its ends, of different signs, is zero.
  [[nodiscard]] PointId onEdge(PointId a, PointId b, Int128 atA, Int128 atB);
  [[nodiscard]] PointId add(ExactPoint point);
  [[nodiscard]] ExactPoint exact(PointId p) const;

  /// In grid units, right to about 2^-20 of one.
  [[nodiscard]] math::Vec3 near(PointId p) const { return near_[at(p)]; }
  /// In the vertices' units.
  [[nodiscard]] math::Vec3 place(PointId p) const { return near_[at(p)] * (1 / scale_); }
  [[nodiscard]] double gridStep() const { return 1 / scale_; }

  /// The sign of orient2d() of any three points.
  [[nodiscard]] int turn(PointId a, PointId b, PointId c, int axis) const;
  /// Whether `p`, on the line of a and b, lies strictly between them.
  [[nodiscard]] bool isBetween(PointId p, PointId a, PointId b) const;
  /// Whether `p` comes before `q` on the way from a to b, all on one line.
  [[nodiscard]] bool comesBefore(PointId p, PointId q, PointId a, PointId b) const;

 private:
  [[nodiscard]] std::uint64_t hashOf(const ExactPoint& point) const;
  [[nodiscard]] bool isSame(const ExactPoint& point, PointId id) const;
  [[nodiscard]] int compare(PointId a, PointId b, int axis) const;

  double scale_ = 1;
  std::vector<PointId> vertexPoints_;
  std::vector<GridPoint> grid_;
  std::vector<ExactPoint> made_;
  std::vector<math::Vec3> near_;
  std::unordered_multimap<std::uint64_t, PointId> byHash_;
};

}  // namespace host::ops
