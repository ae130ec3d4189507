#include "host/viewport/camera_moves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/base/assert.h"

namespace host::viewport {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;

/// Rodrigues' rotation of `v` about the unit axis.
Vec3 rotate(const Vec3& v, const Vec3& axis, double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return v * c + math::cross(axis, v) * s + axis * (math::dot(axis, v) * (1 - c));
}

}  // namespace

void tumble(Camera& camera, const Vec3& pivot, double azimuthDegrees, double elevationDegrees) {
  const double maxElevation = 89.9 * kRadiansPerDegree;
  const Vec3 vertical{0, 1, 0};
  const double azimuth = azimuthDegrees * kRadiansPerDegree;
  const Vec3 oldBack = -camera.viewDirection();
  const double oldElevation = std::asin(std::clamp(oldBack.y, -1.0, 1.0));
  const double elevation =
      std::clamp(oldElevation + elevationDegrees * kRadiansPerDegree,
                 std::min(-maxElevation, oldElevation), std::max(maxElevation, oldElevation)) -
      oldElevation;
  const Vec3 right = rotate(camera.right(), vertical, azimuth);
  const auto turn = [&](const Vec3& v) {
    return rotate(rotate(v, vertical, azimuth), right, -elevation);
  };
  const Vec3 up = turn(camera.up());
  const Vec3 back = turn(oldBack);
  const Vec3 eye = pivot + turn(camera.eye() - pivot);
  const double interest = camera.centerOfInterest;
  lookAt(camera, eye, eye - back, up);
  camera.centerOfInterest = interest;
}

Vec3 tumbleCentre(const Camera& camera, bool aboutInterest) {
  const Vec3& pivot = camera.tumblePivot;
  if (pivot == Vec3{0, 0, 0}) return camera.centerOfInterestPoint();
  if (!aboutInterest) return pivot;
  constexpr double kSameDepth = 1e-6;
  const double depth = math::dot(pivot - camera.eye(), camera.viewDirection());
  const bool isSetTogether =
      std::abs(depth - camera.centerOfInterest) <= kSameDepth * camera.centerOfInterest;
  return isSetTogether ? pivot : camera.centerOfInterestPoint();
}

void track(Camera& camera, PortSize port, double dx, double dy) {
  const ViewProjection view(camera, port);
  const double unit = view.worldPerPixel(camera.centerOfInterest);
  const Vec3 shift = (camera.right() * dx + camera.up() * dy) * unit;
  for (int axis = 0; axis < 3; ++axis) camera.world[3][axis] -= shift[axis];
  const bool isSet = !(camera.tumblePivot == Vec3{0, 0, 0});
  if (isSet) camera.tumblePivot = camera.tumblePivot - shift;
}

void dolly(Camera& camera, double factor) {
  HOST_ASSERT(factor > 0, "a dolly factor is positive");
  if (camera.orthographic) {
    camera.orthographicWidth /= factor;
    return;
  }
  const double distance = camera.centerOfInterest / factor;
  const Vec3 shift = camera.viewDirection() * (camera.centerOfInterest - distance);
  for (int axis = 0; axis < 3; ++axis) camera.world[3][axis] += shift[axis];
  camera.centerOfInterest = distance;
}

double tumbleDegreesPerPixel(PortSize port) {
  return 180.0 / std::max(port.width, port.height);
}

void tumbleByDrag(Camera& camera, PortSize port, const Vec3& pivot, double dx, double dy) {
  const double degrees = tumbleDegreesPerPixel(port);
  tumble(camera, pivot, -dx * degrees, -dy * degrees);
}

void dollyByDrag(Camera& camera, PortSize port, double dx, double dy) {
  dolly(camera, std::pow(4.0, (dx + dy) / std::max(port.width, port.height) * 2));
}

}  // namespace host::viewport
