#pragma once

#include <span>
#include <vector>

#include "host/base/ids.h"
#include "host/math/vec.h"

namespace host::ops {

/// A curve across a bevelled edge that leaves along the faces on both sides.
struct BevelArc {
  math::Vec3 from, to;
  math::Vec3 corner;  ///< where its tangents at the ends meet

  /// The place at a share of the way, 0..1: on a rational quadratic curve, a circle's arc where
  /// both ends are equally far from the corner. A roundness below 1 flattens it towards the chord.
  [[nodiscard]] math::Vec3 at(double share, double roundness = 1) const;
};

/// The faces that fill the gap at a vertex where three or more rounded strips meet: quads along
/// lines that go on from those of the strips, and with an odd number of segments one face with as
/// many sides as there are strips in the middle.
///
/// The rim's places count from the first strip's begin on, `segments` a strip. The surface is a
/// part of a sphere where the rim lies on one, and near it otherwise.
class BevelPatch {
 public:
  /// @param sides 3 or more @param segments 2 or more
  BevelPatch(int sides, int segments) : sides_(sides), segments_(segments) {}

  /// How many vertices are inside of the rim.
  [[nodiscard]] Index insideCount() const;
  /// The faces, wound as the rim runs; vertices inside count on from `firstInside`.
  [[nodiscard]] std::vector<std::vector<VertexId>> faces(std::span<const VertexId> rim,
                                                         VertexId firstInside) const;
  /// Where the vertices inside are. `arcs` are the sides of the rim, each beginning where the one
  /// before ends.
  [[nodiscard]] std::vector<math::Vec3> places(std::span<const BevelArc> arcs,
                                               double roundness) const;

 private:
  [[nodiscard]] int half() const { return segments_ / 2; }
  [[nodiscard]] bool isEven() const { return segments_ % 2 == 0; }
  [[nodiscard]] VertexId node(int sector, int p, int q, std::span<const VertexId> rim,
                              VertexId firstInside) const;
  [[nodiscard]] std::vector<math::Vec3> roundPlaces(std::span<const BevelArc> arcs,
                                                    double roundness) const;
  int sides_, segments_;
};

}  // namespace host::ops
