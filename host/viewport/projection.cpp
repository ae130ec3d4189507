#include "host/viewport/projection.h"

#include "host/base/assert.h"

namespace host::viewport {

ViewProjection::ViewProjection(const Camera& camera, PortSize port)
    : camera_(camera),
      port_(port),
      half_(viewExtents(camera, port.aspect())),
      view_(viewMatrix(camera)),
      projection_(projectionMatrix(camera, port.aspect())),
      eye_(camera.eye()),
      right_(camera.right()),
      up_(camera.up()),
      back_(-camera.viewDirection()) {
  HOST_ASSERT(port.width > 0 && port.height > 0, "a port has at least one pixel");
}

ViewPosition ViewProjection::worldToView(const Vec3& world) const {
  const Vec3 offset = world - eye_;
  const double x = math::dot(offset, right_);
  const double y = math::dot(offset, up_);
  ViewPosition result;
  result.depth = -math::dot(offset, back_);
  result.inFront = camera_.orthographic || result.depth > 0;
  double scale = camera_.orthographic ? 1.0 : result.depth;
  if (scale == 0) scale = camera_.nearClip * 1e-9;  // in the eye's plane: far outside, but finite
  result.x = (x / (half_.halfWidth * scale) + 1) / 2 * port_.width;
  result.y = (y / (half_.halfHeight * scale) + 1) / 2 * port_.height;
  result.isClipped = !result.inFront || result.depth < camera_.nearClip ||
                     result.depth > camera_.farClip || result.x < 0 || result.y < 0 ||
                     result.x > port_.width || result.y > port_.height;
  return result;
}

Vec3 ViewProjection::fromCameraSpace(double x, double y, double depth) const {
  return eye_ + right_ * x + up_ * y - back_ * depth;
}

ViewRay ViewProjection::viewToWorld(ViewPoint pixel) const {
  const double x = (2 * pixel.x / port_.width - 1) * half_.halfWidth;
  const double y = (2 * pixel.y / port_.height - 1) * half_.halfHeight;
  const double n = camera_.nearClip;
  const double f = camera_.farClip;
  if (camera_.orthographic) return {fromCameraSpace(x, y, n), fromCameraSpace(x, y, f)};
  return {fromCameraSpace(x * n, y * n, n), fromCameraSpace(x * f, y * f, f)};
}

Vec3 ViewProjection::viewToWorldAt(ViewPoint pixel, const Vec3& reference) const {
  const double x = (2 * pixel.x / port_.width - 1) * half_.halfWidth;
  const double y = (2 * pixel.y / port_.height - 1) * half_.halfHeight;
  const double depth = -math::dot(reference - eye_, back_);
  const double scale = camera_.orthographic ? 1.0 : depth;
  return fromCameraSpace(x * scale, y * scale, depth);
}

double ViewProjection::worldPerPixel(double depth) const {
  return 2 * half_.halfWidth / port_.width * (camera_.orthographic ? 1.0 : depth);
}

Vec3 ViewProjection::towardsViewer(const Vec3& world) const {
  return camera_.orthographic ? back_ : math::normalized(eye_ - world);
}

}  // namespace host::viewport
