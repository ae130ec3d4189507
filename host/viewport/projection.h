#pragma once

#include "host/viewport/camera.h"

namespace host::viewport {

/// Width and height of a port in pixels, both at least 1.
struct PortSize {
  int width = 1, height = 1;
  [[nodiscard]] double aspect() const { return static_cast<double>(width) / height; }
  friend bool operator==(const PortSize&, const PortSize&) = default;
};

/// A place in the port: continuous pixels, (0, 0) the lower left corner of the lower left pixel.
struct ViewPoint {
  double x = 0, y = 0;
};

/// A projected point. Behind the eye x and y are mirrored through the centre and `inFront` is
/// false.
struct ViewPosition {
  double x = 0, y = 0;     ///< pixels, (0, 0) lower left
  double depth = 0;        ///< cm in front of the eye along the line of sight
  bool inFront = false;    ///< in front of the eye (perspective); always true when orthographic
  bool isClipped = false;  ///< outside the port or beyond a clip plane
};

/// What lies under one pixel position, from the near to the far clip plane, in world space.
struct ViewRay {
  Vec3 nearPoint, farPoint;
  [[nodiscard]] Vec3 direction() const { return math::normalized(farPoint - nearPoint); }
};

/// The map between the world and the pixels of a port, for one camera. A value: valid as long as
/// the camera does not move.
class ViewProjection {
 public:
  ViewProjection(const Camera& camera, PortSize port);

  [[nodiscard]] const Camera& camera() const { return camera_; }
  [[nodiscard]] PortSize port() const { return port_; }
  [[nodiscard]] const Matrix4& view() const { return view_; }
  [[nodiscard]] const Matrix4& projection() const { return projection_; }

  [[nodiscard]] ViewPosition worldToView(const Vec3& world) const;
  [[nodiscard]] ViewRay viewToWorld(ViewPoint pixel) const;
  /// The point under `pixel` in the plane through `reference` that faces the viewer.
  [[nodiscard]] Vec3 viewToWorldAt(ViewPoint pixel, const Vec3& reference) const;

  /// World length that one pixel covers at a depth (cm in front of the eye).
  [[nodiscard]] double worldPerPixel(double depth) const;
  /// Unit vector from a world point towards the viewer.
  [[nodiscard]] Vec3 towardsViewer(const Vec3& world) const;

 private:
  [[nodiscard]] Vec3 fromCameraSpace(double x, double y, double depth) const;

  Camera camera_;
  PortSize port_;
  ViewExtents half_;
  Matrix4 view_, projection_;
  Vec3 eye_, right_, up_, back_;
};

}  // namespace host::viewport
