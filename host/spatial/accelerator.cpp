#include "host/spatial/accelerator.h"

#include <algorithm>
#include <cmath>

#include "host/base/parallel.h"
#include "host/mesh/point_moves.h"
#include "host/mesh/triangulate.h"
#include "host/spatial/ray_scene.h"
#include "host/spatial/triangle_bvh.h"

namespace host::spatial {

using mesh::Mesh;

namespace {

constexpr std::size_t kGrain = 20'000;
void fill(Triangle& t, const Mesh& mesh, FaceId face, Index inFace,
          const std::array<CornerId, 3>& corners) {
  const auto point = [&](CornerId c) { return mesh.points()[at(mesh.cornerVertex(c))]; };
  t.a = point(corners[0]);
  t.b = point(corners[1]);
  t.c = point(corners[2]);
  t.face = face;
  t.corners = corners;
  t.inFace = inFace;
  t.isFinite = isFinite(Vec3(t.a)) && isFinite(Vec3(t.b)) && isFinite(Vec3(t.c));
}

}  // namespace

Accelerator::Accelerator(const Mesh& mesh) : mesh_(mesh.withoutCaches()) {
  const mesh::Triangulation triangulation = mesh::triangulate(mesh);
  triangles_.resize(triangulation.triangles.size());
  parallelFor(at(mesh.faceCount()), kGrain, [&](std::size_t begin, std::size_t end) {
    for (auto f = static_cast<FaceId>(begin); f < static_cast<FaceId>(end); ++f) {
      const Index first = mesh::Triangulation::firstTriangle(mesh, f);
      for (Index i = 0; i < mesh.faceSize(f) - 2; ++i)
        fill(triangles_[at(first + i)], mesh, f, i, triangulation.triangles[at(first + i)]);
    }
  });
  for (const Triangle& t : triangles_)
    for (const math::Vec3f* p : {&t.a, &t.b, &t.c})
      if (isFinite(Vec3(*p))) box_.add(Vec3(*p));
}

Accelerator::~Accelerator() = default;

std::shared_ptr<const Accelerator> Accelerator::of(const Mesh& mesh) {
  mesh::AcceleratorSlot& slot = mesh.acceleratorSlot();
  const std::lock_guard lock(slot.mutex);
  std::shared_ptr<void>& kept = mesh::besidePoints(slot).accelerator;
  if (!kept) kept = std::make_shared<Accelerator>(mesh);
  return std::static_pointer_cast<const Accelerator>(kept);
}

const RayScene& Accelerator::rays() const {
  std::call_once(raysOnce_,
                 [this] { rays_ = std::make_unique<RayScene>(mesh_, triangles_, box_); });
  return *rays_;
}

const TriangleBvh& Accelerator::bvh() const {
  std::call_once(bvhOnce_, [this] { bvh_ = std::make_unique<TriangleBvh>(triangles_); });
  return *bvh_;
}

const PointIndex& Accelerator::vertices() const {
  std::call_once(pointsOnce_, [this] { points_ = std::make_unique<PointIndex>(mesh_.points()); });
  return *points_;
}

std::size_t Accelerator::bytes() const {
  return triangles_.size() * sizeof(Triangle) + (rays_ ? rays_->bytes() : 0) +
         (bvh_ ? bvh_->bytes() : 0) + (points_ ? points_->bytes() : 0);
}

void Accelerator::describe(Index triangle, double u, double v, SurfacePoint& out) const {
  const Triangle& t = triangles_[at(triangle)];
  const Vec3 a(t.a), b(t.b), c(t.c);
  out.face = t.face;
  out.triangle = t.inFace;
  out.corners = t.corners;
  out.u = u;
  out.v = v;
  out.point = a + (b - a) * u + (c - a) * v;
  out.normal = normalized(cross(b - a, c - a));
}

std::optional<RayHit> Accelerator::exactHit(const Ray& ray, Index triangle) const {
  const Triangle& corners = triangles_[at(triangle)];
  const Vec3 a(corners.a), b(corners.b), c(corners.c);
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

}  // namespace host::spatial
