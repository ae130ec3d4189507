#include "host/viewport/camera.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/base/assert.h"

namespace host::viewport {

namespace {

constexpr double kMillimetresPerInch = 25.4;

struct Frame {
  Vec3 right, up, back;
};

/// Orthonormal axes from a matrix that may be scaled, sheared or mirrored; the line of sight is
/// kept exactly.
Frame orthonormalFrame(const Matrix4& m) {
  Vec3 back = math::normalized({m[2][0], m[2][1], m[2][2]});
  if (math::lengthSquared(back) == 0) back = {0, 0, 1};
  Vec3 right = math::normalized(math::cross({m[1][0], m[1][1], m[1][2]}, back));
  if (math::lengthSquared(right) == 0)
    right = math::normalized(
        math::cross(std::abs(back.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{0, 0, -1}, back));
  return {right, math::cross(back, right), back};
}

Matrix4 frameMatrix(const Frame& frame, const Vec3& eye) {
  Matrix4 m;
  const Vec3 rows[4] = {frame.right, frame.up, frame.back, eye};
  for (int row = 0; row < 4; ++row)
    for (int axis = 0; axis < 3; ++axis) m[row][axis] = rows[row][axis];
  return m;
}

/// Whether the gate's width, rather than its height, is what fills the port.
bool fitsWidth(FilmFit fit, double aspect, double filmAspect) {
  switch (fit) {
    case FilmFit::Horizontal:
      return true;
    case FilmFit::Vertical:
      return false;
    case FilmFit::Fill:
      return aspect >= filmAspect;
    case FilmFit::Overscan:
      return aspect < filmAspect;
  }
  return true;
}

}  // namespace

Vec3 Camera::eye() const {
  return {world[3][0], world[3][1], world[3][2]};
}
Vec3 Camera::right() const {
  return orthonormalFrame(world).right;
}
Vec3 Camera::up() const {
  return orthonormalFrame(world).up;
}
Vec3 Camera::viewDirection() const {
  return -orthonormalFrame(world).back;
}
Vec3 Camera::centerOfInterestPoint() const {
  return eye() + viewDirection() * centerOfInterest;
}

ViewExtents viewExtents(const Camera& camera, double aspect) {
  HOST_ASSERT(aspect > 0, "give the aspect of a port of at least one pixel");
  if (camera.orthographic)
    return {camera.orthographicWidth / 2, camera.orthographicWidth / 2 / aspect};
  const double perInch = kMillimetresPerInch / (2 * camera.focalLength);
  if (fitsWidth(camera.filmFit, aspect,
                camera.horizontalFilmAperture / camera.verticalFilmAperture)) {
    const double half = camera.horizontalFilmAperture * perInch;
    return {half, half / aspect};
  }
  const double half = camera.verticalFilmAperture * perInch;
  return {half * aspect, half};
}

Matrix4 viewMatrix(const Camera& camera) {
  const Frame frame = orthonormalFrame(camera.world);
  const Vec3 eye = camera.eye();
  const Vec3 axes[3] = {frame.right, frame.up, frame.back};
  Matrix4 m;
  for (int column = 0; column < 3; ++column) {
    for (int row = 0; row < 3; ++row) m[row][column] = axes[column][row];
    m[3][column] = -math::dot(eye, axes[column]);
  }
  return m;
}

Matrix4 projectionMatrix(const Camera& camera, double aspect) {
  const ViewExtents half = viewExtents(camera, aspect);
  const double n = camera.nearClip;
  const double f = camera.farClip;
  HOST_ASSERT(f > n, "the far clip plane lies behind the near one");
  Matrix4 m;
  m[0][0] = 1 / half.halfWidth;
  m[1][1] = 1 / half.halfHeight;
  if (camera.orthographic) {
    m[2][2] = -2 / (f - n);
    m[3][2] = -(f + n) / (f - n);
    return m;
  }
  m[2][2] = -(f + n) / (f - n);
  m[2][3] = -1;
  m[3][2] = -2 * f * n / (f - n);
  m[3][3] = 0;
  return m;
}

void lookAt(Camera& camera, const Vec3& eye, const Vec3& target, const Vec3& up) {
  const Vec3 away = eye - target;
  const double distance = math::length(away);
  const Vec3 back = distance > 0 ? away / distance : Vec3{0, 0, 1};
  Vec3 upward = up;
  if (math::length(math::cross(upward, back)) < 1e-9 * math::length(upward) ||
      math::lengthSquared(upward) == 0)
    upward = std::abs(back.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{0, 0, -1};
  const Vec3 right = math::normalized(math::cross(upward, back));
  camera.world = frameMatrix({right, math::cross(back, right), back}, eye);
  camera.centerOfInterest = distance > 0 ? distance : 1.0;
}

Camera defaultPerspectiveCamera() {
  Camera camera;
  lookAt(camera, {28, 21, 28}, {0, 0, 0});
  return camera;
}

namespace {

/// Bounds of lines through the points along the four edges of the frustum: a view with eye (x, y)
/// in the plane through the origin sees everything if its frustum, moved there, contains all of
/// them.
struct Slopes {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  void add(double lowValue, double highValue) {
    low = std::min(low, lowValue);
    high = std::max(high, highValue);
  }
};

}  // namespace

bool frame(Camera& camera, double aspect, std::span<const Vec3> points, double fill) {
  HOST_ASSERT(fill > 0 && fill <= 1, "the share of the port lies in (0, 1]");
  const Frame axes = orthonormalFrame(camera.world);
  const ViewExtents half = viewExtents(camera, aspect);
  const double tanX = half.halfWidth * fill;
  const double tanY = half.halfHeight * fill;

  // Camera axes, but origin of the world: x right, y up, z towards the viewer.
  Slopes x, y, z, coneX, coneY;
  for (const Vec3& point : points) {
    if (!math::isFinite(point)) continue;
    const Vec3 p{math::dot(point, axes.right), math::dot(point, axes.up),
                 math::dot(point, axes.back)};
    x.add(p.x, p.x);
    y.add(p.y, p.y);
    z.add(p.z, p.z);
    if (camera.orthographic) continue;
    coneX.add(p.x - tanX * p.z, p.x + tanX * p.z);
    coneY.add(p.y - tanY * p.z, p.y + tanY * p.z);
  }
  if (!(x.low <= x.high)) return false;

  const double middle = (z.low + z.high) / 2;
  const double depth = z.high - z.low;
  const double size = std::max({x.high - x.low, y.high - y.low, depth, 1e-6});
  Vec3 eye;
  if (camera.orthographic) {
    const double width = std::max((x.high - x.low) / fill, (y.high - y.low) / fill * aspect);
    camera.orthographicWidth = width > 0 ? width : size;
    const double room = camera.nearClip + size;
    const double current = math::dot(camera.eye(), axes.back);
    eye = {(x.low + x.high) / 2, (y.low + y.high) / 2, std::max(current, z.high + room)};
  } else {
    // The eye height at which the extreme lines of each pair meet, the higher of the two
    // directions.
    const double heightX = (coneX.high - coneX.low) / (2 * tanX);
    const double heightY = (coneY.high - coneY.low) / (2 * tanY);
    const double height = std::max({heightX, heightY, z.high + size * 1e-3});
    eye = {(coneX.low + coneX.high) / 2, (coneY.low + coneY.high) / 2, height};
    camera.nearClip = std::min(camera.nearClip, std::max((height - z.high) / 2, size * 1e-4));
  }
  camera.farClip = std::max(camera.farClip, (eye.z - z.low) * 2);
  camera.centerOfInterest = eye.z - middle;
  camera.world = frameMatrix(axes, axes.right * eye.x + axes.up * eye.y + axes.back * eye.z);
  camera.tumblePivot = camera.centerOfInterestPoint();
  return true;
}

}  // namespace host::viewport
