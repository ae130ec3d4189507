#include "host/ops/query/uv_place.h"

#include <algorithm>
#include <limits>

#include "host/math/ray.h"
#include "host/mesh/triangulate.h"

namespace host::ops {

using math::Vec3;
using mesh::Mesh;
using mesh::Vec2f;

namespace {

bool hasUvs(const Mesh& mesh, int uvSet, CornerId corner) {
  return mesh.cornerUv(uvSet, corner) != kNone;
}

/// The UVs of a corner as a point of the plane z = 0.
Vec3 flat(const Mesh& mesh, int uvSet, CornerId corner) {
  const Vec2f& uv = mesh.uvSet(uvSet).points[at(mesh.cornerUv(uvSet, corner))];
  return {uv.u, uv.v, 0};
}

Vec3 cornerPoint(const Mesh& mesh, CornerId corner) {
  return mesh.point(mesh.cornerVertex(corner));
}

/// The place of a face nearest to `target`, corners being where `place` puts them.
template <class Place>
FacePlace nearest(const Mesh& mesh, FaceId face, const Vec3& target, Place place, double& squared) {
  FacePlace best;
  squared = std::numeric_limits<double>::infinity();
  const CornerId first = mesh.firstCorner(face);
  for (const mesh::LoopTriangle& triangle : mesh::triangulateFace(mesh, face)) {
    const std::array<CornerId, 3> corners{first + triangle[0], first + triangle[1],
                                          first + triangle[2]};
    const Vec3 a = place(corners[0]), b = place(corners[1]), c = place(corners[2]);
    const auto [u, v] = math::closestOnTriangle(a, b, c, target);
    const double distance = math::lengthSquared(a * (1 - u - v) + b * u + c * v - target);
    if (!(distance < squared)) continue;
    squared = distance;
    best = {corners, {1 - u - v, u, v}};
  }
  return best;
}

/// Whether UVs lie within a face's box in the map, or no farther from it than `reach`.
bool isNearBox(const Mesh& mesh, int uvSet, FaceId face, const Vec2f& uv, double reach) {
  double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
  for (CornerId c = mesh.firstCorner(face); c < mesh.firstCorner(face + 1); ++c) {
    const Vec3 p = flat(mesh, uvSet, c);
    low[0] = std::min(low[0], p.x);
    high[0] = std::max(high[0], p.x);
    low[1] = std::min(low[1], p.y);
    high[1] = std::max(high[1], p.y);
  }
  return uv.u >= low[0] - reach && uv.u <= high[0] + reach && uv.v >= low[1] - reach &&
         uv.v <= high[1] + reach;
}

}  // namespace

std::optional<FacePlace> placeAtUv(const Mesh& mesh, int uvSet, FaceId face, const Vec2f& uv,
                                   double tolerance) {
  if (!hasUvs(mesh, uvSet, mesh.firstCorner(face))) return {};
  // Inside, the distance is rounding only.
  constexpr double kRounding = 1e-7;
  const double reach = std::max(tolerance, kRounding);
  if (!isNearBox(mesh, uvSet, face, uv, reach)) return {};
  double squared = 0;
  const FacePlace place = nearest(
      mesh, face, Vec3{uv.u, uv.v, 0}, [&](CornerId c) { return flat(mesh, uvSet, c); }, squared);
  if (!(squared <= reach * reach)) return {};
  return place;
}

FacePlace closestOnFace(const Mesh& mesh, FaceId face, const Vec3& point) {
  double squared = 0;
  return nearest(
      mesh, face, point, [&](CornerId c) { return cornerPoint(mesh, c); }, squared);
}

Vec3 pointAt(const Mesh& mesh, const FacePlace& place) {
  Vec3 sum;
  for (std::size_t i = 0; i < 3; ++i) sum += cornerPoint(mesh, place.corners[i]) * place.weights[i];
  return sum;
}

std::optional<Vec2f> uvAt(const Mesh& mesh, int uvSet, const FacePlace& place) {
  if (!hasUvs(mesh, uvSet, place.corners[0])) return {};
  Vec3 sum;
  for (std::size_t i = 0; i < 3; ++i) sum += flat(mesh, uvSet, place.corners[i]) * place.weights[i];
  return Vec2f{static_cast<float>(sum.x), static_cast<float>(sum.y)};
}

std::optional<UvAxes> uvAxesAt(const Mesh& mesh, int uvSet, const FacePlace& place) {
  if (!hasUvs(mesh, uvSet, place.corners[0])) return {};
  const Vec3 a = cornerPoint(mesh, place.corners[1]) - cornerPoint(mesh, place.corners[0]);
  const Vec3 b = cornerPoint(mesh, place.corners[2]) - cornerPoint(mesh, place.corners[0]);
  const Vec3 s = flat(mesh, uvSet, place.corners[1]) - flat(mesh, uvSet, place.corners[0]);
  const Vec3 t = flat(mesh, uvSet, place.corners[2]) - flat(mesh, uvSet, place.corners[0]);
  const double area = s.x * t.y - t.x * s.y;
  const Vec3 normal = math::cross(a, b);
  if (area == 0 || math::length(normal) == 0) return {};
  return UvAxes{math::normalized(normal), math::normalized((a * t.y - b * s.y) / area),
                math::normalized((b * s.x - a * t.x) / area)};
}

double uvArea(const Mesh& mesh, int uvSet, FaceId face) {
  const CornerId first = mesh.firstCorner(face);
  if (!hasUvs(mesh, uvSet, first)) return 0;
  const Vec3 origin = flat(mesh, uvSet, first);
  double sum = 0;
  for (Index i = 1; i + 1 < mesh.faceSize(face); ++i)
    sum += math::cross(flat(mesh, uvSet, first + i) - origin,
                       flat(mesh, uvSet, first + i + 1) - origin)
               .z;
  return 0.5 * sum;
}

}  // namespace host::ops
