#pragma once

#include <numbers>
#include <optional>

#include "host/base/result.h"
#include "host/math/frame.h"
#include "host/math/matrix4.h"

namespace host::ops {

/// Translation, rotation (radians, about x, then y, then z) and scale.
struct ExtrudeTransform {
  math::Vec3 translate, rotate, scale{1, 1, 1};
};

/// How extruded components are placed. All lengths are in the space below.
struct ExtrudePlacement {
  int divisions = 1;     ///< segments from the old place to the new one
  double offset = 0;     ///< towards the inside of the extruded region, cm
  double thickness = 0;  ///< moves the planes of the region's faces out, cm
  double taper = 1;      ///< scale about the region's centre, reached at the last division
  double twist = 0;      ///< about the region's normal, reached at the last division, radians
  ExtrudeTransform
      local;  ///< in the region's frame: z along its mean normal, origin at its centre; its
              ///< translation along z goes along the unit mean normal of the faces at each point
  ExtrudeTransform world;  ///< in the space below, about the pivot
  std::optional<math::Vec3>
      pivot;            ///< of the world transform; by default the centre of all that is extruded
  math::Matrix4 space;  ///< from object space to the space that all of this is measured in
  double smoothingAngle = std::numbers::pi / 6;  ///< edges of the sides are hard beyond it, radians
};

/// Refuses numbers that no extrusion can work with. @return the way back from the placement's
/// space.
[[nodiscard]] Result<math::Matrix4> checkPlacement(const ExtrudePlacement& placement);

/// Places points of a region: offset by `inset` and `push` (both for the last division), then moved
/// by the local and the world transform, all of them by the fraction t of the way.
class ExtrudeMover {
 public:
  ExtrudeMover(const ExtrudePlacement& placement, const math::Frame& region,
               const math::Vec3& pivot, double t);
  [[nodiscard]] math::Vec3 place(const math::Vec3& p, const math::Vec3& inset,
                                 const math::Vec3& push) const {
    return place(p, inset, push, region_.z);
  }
  /// The same with the direction in which the local translation along z goes at this point.
  [[nodiscard]] math::Vec3 place(const math::Vec3& p, const math::Vec3& inset,
                                 const math::Vec3& push, const math::Vec3& normal) const;

 private:
  struct Motion {
    Motion(const ExtrudeTransform& by, double taper, double twist, double t);
    [[nodiscard]] math::Vec3 turned(const math::Vec3& p) const;  ///< all but the translation
    math::Vec3 scale;
    double cosine, sine;
    math::Matrix4 rotation;
    math::Vec3 translation;
    bool isPlain;  ///< only translates, so that points which do not move keep every bit
  };
  Motion local_, world_;
  math::Frame region_;
  math::Vec3 pivot_;
  double t_;
};

}  // namespace host::ops
