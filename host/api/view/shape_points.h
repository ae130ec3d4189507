#pragma once

#include <numbers>
#include <vector>

#include "host/math/vec.h"

namespace host::api {

using ShapePoints = std::vector<math::Vec3>;

/// Two unit vectors that with the unit `normal` form a right-handed frame.
struct PlaneFrame {
  explicit PlaneFrame(const math::Vec3& normal);
  math::Vec3 x, y, normal;
};

/// Points on an arc: from `start` counter-clockwise by `sweep` radians about the frame's normal,
/// ends included.
[[nodiscard]] ShapePoints arcPoints(const math::Vec3& center, const PlaneFrame& frame,
                                    double radius, double start,
                                    double sweep = 2 * std::numbers::pi);
/// The angle of a direction in the frame, radians.
[[nodiscard]] double angleIn(const PlaneFrame& frame, const math::Vec3& direction);
/// Line segments along a run of points.
[[nodiscard]] ShapePoints segmentsOf(const ShapePoints& run, bool isClosed);
/// Triangles from a centre to each segment of a run.
[[nodiscard]] ShapePoints fanOf(const math::Vec3& center, const ShapePoints& run, bool isClosed);
[[nodiscard]] ShapePoints sphereTriangles(const math::Vec3& center, double radius);

}  // namespace host::api
