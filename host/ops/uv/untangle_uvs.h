#pragma once

#include "host/ops/uv/unfold.h"

namespace host::ops {

struct UntangleOptions {
  enum class MapBorder { Keep, Circular, Square, Shape, ShapeCircular, ShapeSquare };
  /// Where the border goes, fitted in the unit square: it stays, becomes a circle or square, takes
  /// the shape that unfolding gives it, or one halfway between.
  MapBorder mapBorder = MapBorder::Keep;
  int relaxIterations = 50;  ///< rounds a shell at most, once nothing is turned over
  double tolerance = 0.1;    ///< ends when a round lowers the stretch by less, percent
  bool pinBorder = true;     ///< a border that stays where it is does not move while relaxing
  enum class Relax { Stretch, Uniform, InverseLength, InverseSqrtLength, Harmonic };
  /// What relaxing evens out: the stretch of the faces, or edges as springs that all pull alike, by
  /// one over their length on the surface or its root, or by the cotangents of the angles across.
  Relax relax = Relax::Stretch;
  double shapeDetail = 20;  ///< of the Shape borders: 20 keeps the outline, less rounds it off
};

/// Turns the turned faces of UV shells back and evens the rest out.
///
/// Shells, pins, errors and guarantees are those of unfoldUvs(); a border that crosses itself where
/// it has to stay leaves its shell as it was.
[[nodiscard]] Result<UnfoldResult> untangleUvs(mesh::Mesh& mesh, int uvSet,
                                               std::span<const Index> shells,
                                               std::span<const std::uint8_t> isPinned,
                                               const UntangleOptions& options = {});

}  // namespace host::ops
