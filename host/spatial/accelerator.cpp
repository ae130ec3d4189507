#include "host/spatial/accelerator.h"

#include <algorithm>
#include <cmath>

#include "host/spatial/ray_scene.h"
#include "host/spatial/triangle_bvh.h"

namespace host::spatial {

using mesh::Mesh;

namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

/// Triangles of vertices, as the structures below want them.
std::vector<std::array<VertexId, 3>> vertexTriangles(const Mesh& mesh,
                                                     const mesh::Triangulation& corners) {
  std::vector<std::array<VertexId, 3>> triangles;
  triangles.reserve(corners.triangles.size());
  for (const auto& t : corners.triangles)
    triangles.push_back(
        {mesh.cornerVertex(t[0]), mesh.cornerVertex(t[1]), mesh.cornerVertex(t[2])});
  return triangles;
}

}  // namespace

Accelerator::Accelerator(const Mesh& mesh)
    : mesh_(mesh.withoutCaches()), triangles_(mesh::triangulate(mesh)) {
  triangleFaces_.reserve(triangles_.triangles.size());
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    triangleFaces_.insert(triangleFaces_.end(), at(mesh.faceSize(f) - 2), f);
  for (VertexId v : mesh.topology().cornerVertices)
    if (const Vec3 p = mesh.point(v); isFinite(p)) box_.add(p);
}

Accelerator::~Accelerator() = default;

std::shared_ptr<const Accelerator> Accelerator::of(const Mesh& mesh) {
  mesh::AcceleratorSlot& slot = mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  if (!slot.value) slot.value = std::make_shared<Accelerator>(mesh);
  return std::static_pointer_cast<const Accelerator>(slot.value);
}

const RayScene& Accelerator::rays() const {
  std::call_once(raysOnce_, [this] {
    rays_ = std::make_unique<RayScene>(mesh_.points(), vertexTriangles(mesh_, triangles_), box_);
  });
  return *rays_;
}

const TriangleBvh& Accelerator::bvh() const {
  std::call_once(bvhOnce_, [this] {
    bvh_ = std::make_unique<TriangleBvh>(mesh_.points(), vertexTriangles(mesh_, triangles_));
  });
  return *bvh_;
}

const PointIndex& Accelerator::vertices() const {
  std::call_once(pointsOnce_, [this] { points_ = std::make_unique<PointIndex>(mesh_.points()); });
  return *points_;
}

std::size_t Accelerator::bytes() const {
  return triangles_.triangles.size() * sizeof(triangles_.triangles[0]) +
         triangleFaces_.size() * sizeof(FaceId) + (rays_ ? rays_->bytes() : 0) +
         (bvh_ ? bvh_->bytes() : 0) + (points_ ? points_->bytes() : 0);
}

Accelerator::Corners Accelerator::cornersOf(Index triangle) const {
  const auto& t = triangles_.triangles[at(triangle)];
  return {mesh_.point(mesh_.cornerVertex(t[0])), mesh_.point(mesh_.cornerVertex(t[1])),
          mesh_.point(mesh_.cornerVertex(t[2]))};
}

void Accelerator::describe(Index triangle, double u, double v, SurfacePoint& out) const {
  const auto [a, b, c] = cornersOf(triangle);
  out.face = triangleFaces_[at(triangle)];
  out.triangle = triangle - mesh::Triangulation::firstTriangle(mesh_, out.face);
  out.corners = triangles_.triangles[at(triangle)];
  out.u = u;
  out.v = v;
  out.point = a + (b - a) * u + (c - a) * v;
  out.normal = normalized(cross(b - a, c - a));
}

std::optional<RayHit> Accelerator::exactHit(const Ray& ray, Index triangle) const {
  const auto [a, b, c] = cornersOf(triangle);
  auto found = math::intersectTriangle(ray, a, b, c);
  if (!found) {
    // A hit by a hair's breadth in single precision: take the point of the triangle next to the
    // ray.
    const Vec3 normal = cross(b - a, c - a);
    const double along = dot(normal, ray.direction);
    if (!(std::abs(along) > 1e-12 * length(normal) * length(ray.direction))) return {};
    const double t = dot(normal, a - ray.origin) / along;
    const auto [u, v] = math::closestOnTriangle(a, b, c, ray.at(t));
    found = math::RayTriangleHit{t, u, v};
  }
  RayHit hit;
  describe(triangle, found->u, found->v, hit);
  hit.t = found->t;
  hit.isFrontFacing = dot(hit.normal, ray.direction) < 0;
  return hit;
}

bool Accelerator::accepts(const RayHit& hit, const RayOptions& options) const {
  return hit.t >= options.tMin && hit.t <= options.tMax &&
         (hit.isFrontFacing || !options.frontFacingOnly) &&
         (options.faceMask.empty() || options.faceMask[at(hit.face)] != 0);
}

std::optional<RayHit> Accelerator::closestAhead(const Ray& ray, const RayOptions& options) const {
  // Mostly the first triangle is the answer; asking about each candidate costs, so it is done only
  // when it is not.
  const Index triangle = rays().first(ray, options.tMin, options.tMax);
  if (triangle == kNone) return {};
  if (auto hit = exactHit(ray, triangle); hit && accepts(*hit, options)) return hit;
  std::optional<RayHit> best;
  (void)rays().first(ray, options.tMin, options.tMax, [&](Index candidate) {
    auto hit = exactHit(ray, candidate);
    if (!hit || !accepts(*hit, options)) return false;
    if (!best || hit->t < best->t) best = std::move(hit);
    return true;
  });
  return best;
}

std::optional<RayHit> Accelerator::closestHit(const Ray& ray, const RayOptions& options) const {
  std::optional<RayHit> ahead = closestAhead(ray, options);
  if (!options.bothDirections) return ahead;
  RayOptions behindOptions = options;
  behindOptions.tMin = 0;
  if (ahead) behindOptions.tMax = std::min(options.tMax, ahead->t);
  // Turning the ray around turns facing around with it, so facing is judged afterwards.
  behindOptions.frontFacingOnly = false;
  std::optional<RayHit> behind;
  const Ray backward{ray.origin, -ray.direction};
  (void)rays().first(backward, 0, behindOptions.tMax, [&](Index candidate) {
    auto hit = exactHit(backward, candidate);
    if (!hit || !accepts(*hit, behindOptions)) return false;
    if (options.frontFacingOnly && hit->isFrontFacing) return false;
    if (!behind || hit->t < behind->t) behind = std::move(hit);
    return true;
  });
  if (!behind || (ahead && ahead->t <= behind->t)) return ahead;
  behind->t = -behind->t;
  behind->isFrontFacing = !behind->isFrontFacing;
  return behind;
}

bool Accelerator::isHit(const Ray& ray, const RayOptions& options) const {
  if (options.bothDirections) return closestHit(ray, options).has_value();
  return rays().any(ray, options.tMin, options.tMax, [&](Index candidate) {
    const auto hit = exactHit(ray, candidate);
    return hit && accepts(*hit, options);
  });
}

std::vector<RayHit> Accelerator::allHits(const Ray& ray, const RayOptions& options) const {
  RayOptions wide = options;
  if (options.bothDirections) wide.tMin = -options.tMax;
  std::vector<RayHit> hits;
  (void)rays().first(ray, wide.tMin, wide.tMax, [&](Index candidate) {
    if (auto hit = exactHit(ray, candidate); hit && accepts(*hit, wide)) hits.push_back(*hit);
    return false;
  });
  std::ranges::sort(hits, [](const RayHit& a, const RayHit& b) {
    return a.t != b.t ? a.t < b.t : a.face != b.face ? a.face < b.face : a.triangle < b.triangle;
  });
  // Through a diagonal both triangles are met, at parameters that differ by rounding at most.
  const double tolerance = 1e-9 * box_.diagonal() / std::max(length(ray.direction), 1e-300);
  std::vector<RayHit> unique;
  for (const RayHit& hit : hits) {
    bool isKnown = false;
    for (std::size_t i = unique.size(); i-- > 0 && hit.t - unique[i].t <= tolerance && !isKnown;)
      isKnown = unique[i].face == hit.face;
    if (!isKnown) unique.push_back(hit);
  }
  return unique;
}

std::optional<ClosestPoint> Accelerator::closestPoint(const Vec3& p, double maxDistance) const {
  if (!(maxDistance >= 0)) return {};
  const auto nearest = bvh().nearest(p, maxDistance * maxDistance);
  if (nearest.triangle == kNone) return {};
  ClosestPoint out;
  describe(nearest.triangle, nearest.u, nearest.v, out);
  out.distance = std::sqrt(nearest.squared);
  return out;
}

std::vector<FaceId> Accelerator::facesInBox(const Box& box) const {
  std::vector<Index> faces;
  bvh().inBox(box, faces);
  for (Index& f : faces) f = triangleFaces_[at(f)];
  std::ranges::sort(faces);
  faces.erase(std::ranges::unique(faces).begin(), faces.end());
  return faces;
}

}  // namespace host::spatial
