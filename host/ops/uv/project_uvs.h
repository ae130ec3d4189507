#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"

namespace host::ops {

enum class UvProjectionShape { Planar, Cylindrical, Spherical };

/// How faces are seen by a projection.
struct UvProjection {
  UvProjectionShape shape = UvProjectionShape::Planar;
  /// From object space to the projection's own: its middle in the origin, the image's u along x and
  /// v along y, seen from +z; cylinders and spheres have their axis along y and their seam at -z.
  /// A projective matrix gives a camera's view.
  math::Matrix4 toProjection = {};
  double width = 1;   ///< what fills the image in u: cm of a plane, radians of sweep of the others
  double height = 1;  ///< what fills it in v: cm, of a sphere radians
  double imageCenterU = 0.5, imageCenterV = 0.5;  ///< where in the map its middle comes to lie
  double imageScaleU = 1, imageScaleV = 1;
  double imageAngle = 0;      ///< turn of the image about its middle, radians
  bool correctsSeam = false;  ///< faces across the seam go on beyond it instead of coming back, and
                              ///< corners on the axis take the middle of their face
};

/// Projects faces: each vertex of them gets one new UV that they share, more where the seam is
/// corrected. New UVs follow the others in vertex order; those that lost their last corner go.
/// @return an error when the projection can't be: a size of zero, a matrix that gives no places
[[nodiscard]] Result<void> projectUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces,
                                      const UvProjection& projection);

/// The rotation whose rows are x, y and z of the plane that faces are seen best on: it faces the
/// way most of their area does, and its x is along their longest extent in it.
[[nodiscard]] math::Matrix4 bestPlaneAxes(const mesh::Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
