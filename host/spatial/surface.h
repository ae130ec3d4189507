#pragma once

#include <memory>
#include <optional>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"
#include "host/spatial/accelerator.h"

namespace host::spatial {

/// A mesh as rays and points of one space meet it.
///
/// Where a space is object space moved, turned and scaled evenly, nearest is nearest in both, so
/// questions go to the mesh's own accelerator. Elsewhere the nearest place depends on the space:
/// such a space has an accelerator of its own, over the mesh transformed by the matrix without its
/// translation, which is kept until another shape or mesh asks for one.
class Surface {
 public:
  /// The mesh is shared, not copied; without a matrix the space is object space.
  Surface(std::shared_ptr<const mesh::Mesh> mesh, const std::optional<math::Matrix4>& toSpace);

  [[nodiscard]] const mesh::Mesh& mesh() const { return *mesh_; }
  [[nodiscard]] const std::optional<math::Matrix4>& space() const { return toSpace_; }

  /// The first hit along a ray of the space; `t` counts in lengths of its direction.
  [[nodiscard]] std::optional<RayHit> closestHit(const math::Ray& ray,
                                                 const RayOptions& options) const;
  [[nodiscard]] std::vector<RayHit> allHits(const math::Ray& ray, const RayOptions& options) const;
  /// The nearest place to a point of the space; its `point` is in the space.
  [[nodiscard]] std::optional<ClosestPoint> closestPoint(
      const math::Vec3& point, double maxDistance = std::numeric_limits<double>::infinity()) const;

  /// A ray of the space, in object space; nothing when there is no way back.
  [[nodiscard]] std::optional<math::Ray> toObject(const math::Ray& ray) const;
  /// Where a place that was found lies in the space, computed in double from the mesh's own points.
  [[nodiscard]] math::Vec3 pointOf(const SurfacePoint& place) const;
  /// The face's normal in the space, unit.
  [[nodiscard]] math::Vec3 normalOf(FaceId face) const;

 private:
  /// Brings a place that an accelerator has found into the space: from object space, or from a
  /// stretched one's.
  void moveToSpace(SurfacePoint& place, bool isInObject) const;
  [[nodiscard]] const Accelerator& own() const;
  [[nodiscard]] const Accelerator& stretched() const;
  [[nodiscard]] math::Vec3 translation() const {
    return {toSpace_->m[3][0], toSpace_->m[3][1], toSpace_->m[3][2]};
  }

  std::shared_ptr<const mesh::Mesh> mesh_;
  std::optional<math::Matrix4> toSpace_, fromSpace_;
  double evenScale_ = 0;  ///< 0 where the space is stretched, sheared or projected
  mutable std::shared_ptr<const Accelerator> own_, stretched_;
};

/// What accelerators surfaces have used and somebody still keeps.
struct AcceleratorUse {
  std::size_t count = 0, bytes = 0;
};
[[nodiscard]] AcceleratorUse acceleratorUse();
/// Forgets the accelerators that `Surface` keeps for stretched spaces.
void forgetStretchedAccelerators();

}  // namespace host::spatial
