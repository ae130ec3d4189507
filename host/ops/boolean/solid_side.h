#pragma once

#include <memory>

#include "host/ops/boolean/arrangement.h"
#include "host/spatial/accelerator.h"

namespace host::ops {

/// Tells what lies inside of one of the two meshes of an arrangement.
///
/// A mesh whose edges cancel out, every walk by one the other way between the same two points, is
/// closed: inside is where its winding number is not 0, counted exactly along a ray. One that
/// encloses a negative volume is inside out; that does not change what is inside. A mesh that is
/// open has no inside: there, it is behind the nearest face (Baerentzen and Aanaes 2005), in
/// double.
class SolidSide {
 public:
  SolidSide(Arrangement& arrangement, int side);

  [[nodiscard]] bool isClosed() const { return isClosed_; }
  [[nodiscard]] bool isInsideOut() const { return isInsideOut_; }
  /// Whether a point that is not on the mesh lies inside.
  [[nodiscard]] bool holds(const ExactPoint& point);

 private:
  void findClosed();
  [[nodiscard]] bool isBehindNearest(const math::Vec3& point);
  /// The winding number along a ray; nothing when the ray meets an edge.
  [[nodiscard]] std::optional<int> windingAlong(const ExactPoint& point, const math::Vec3& near,
                                                const GridPoint& direction);
  [[nodiscard]] std::optional<int> crossing(const ExactPoint& point, const GridPoint& direction,
                                            const FaceTriangle& triangle) const;

  Arrangement& arrangement_;
  int side_;
  bool isClosed_ = false, isInsideOut_ = false;
  mesh::Mesh open_;
  std::unique_ptr<spatial::Accelerator> nearest_;
};

/// The middle of three points.
[[nodiscard]] ExactPoint exactMiddle(const ExactPoints& points, const std::array<PointId, 3>& of);

}  // namespace host::ops
