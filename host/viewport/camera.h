#pragma once

#include <span>

#include "host/math/matrix4.h"

namespace host::viewport {

using math::Matrix4;
using math::Vec3;

/// How the film gate is fitted to a port of another aspect.
enum class FilmFit {
  Fill,        ///< the port lies inside the gate: the smaller of the two fields of view
  Horizontal,  ///< gate and port have the same width
  Vertical,    ///< gate and port have the same height
  Overscan,    ///< the gate lies inside the port
};

/// What a camera node holds: where it stands and what its lens sees. It looks along its local -z
/// with +y up; scale and shear of `world` don't change the view.
struct Camera {
  Matrix4 world;  ///< camera to world
  bool orthographic = false;
  double focalLength = 35.0;                ///< millimetres
  double horizontalFilmAperture = 1.41732;  ///< inches
  double verticalFilmAperture = 0.94488;    ///< inches
  FilmFit filmFit = FilmFit::Fill;
  double nearClip = 0.1;  ///< cm in front of the eye
  double farClip = 10000.0;
  double orthographicWidth = 30.0;        ///< cm across the port
  double centerOfInterest = 44.82186966;  ///< cm in front of the eye: what tumbling turns about
  Vec3 tumblePivot;                       ///< world; the origin while nobody has set it

  [[nodiscard]] Vec3 eye() const;
  [[nodiscard]] Vec3 right() const;  ///< unit, as are the next two; together right-handed
  [[nodiscard]] Vec3 up() const;
  [[nodiscard]] Vec3 viewDirection() const;
  [[nodiscard]] Vec3 centerOfInterestPoint() const;

  friend bool operator==(const Camera&, const Camera&) = default;
};

/// Half extents of the view per unit of depth (perspective), or in cm (orthographic).
struct ViewExtents {
  double halfWidth = 0, halfHeight = 0;
};

/// Extents that a port of the given width to height ratio sees.
[[nodiscard]] ViewExtents viewExtents(const Camera& camera, double aspect);

/// World to camera space: rigid, the inverse of the camera's orthonormal frame.
[[nodiscard]] Matrix4 viewMatrix(const Camera& camera);

/// Camera space to clip space (-w..w on all three axes, near at -w), for row vectors: stored in
/// memory as the fixed-function pipeline takes it.
[[nodiscard]] Matrix4 projectionMatrix(const Camera& camera, double aspect);

/// Places the camera at `eye`, looking at `target`, which becomes the centre of interest. An `up`
/// along the line of sight, or a target at the eye, is replaced by a usable one.
void lookAt(Camera& camera, const Vec3& eye, const Vec3& target, const Vec3& up = {0, 1, 0});

/// The home perspective view of a new scene.
[[nodiscard]] Camera defaultPerspectiveCamera();

/// Moves the camera along its line of sight and sideways (perspective), or sideways with a new
/// width (orthographic), so that all points are in view and their picture is centred.
///
/// The direction of view stays. Their centre becomes the centre of interest and the tumble pivot;
/// the clip planes are widened when the points need it, never narrowed. Points that are not finite
/// are ignored; with none left the camera stays.
/// @param fill the share of the port that the points may cover in either direction, 0..1
/// @return whether the camera was moved
bool frame(Camera& camera, double aspect, std::span<const Vec3> points, double fill = 0.9);

}  // namespace host::viewport
