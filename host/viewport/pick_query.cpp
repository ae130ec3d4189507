#include "host/viewport/pick_query.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::viewport {

std::optional<ViewSegment> projectSegment(const ViewProjection& view, Vec3 a, Vec3 b) {
  if (!math::isFinite(a) || !math::isFinite(b)) return {};
  const double near = view.camera().nearClip;
  const double depthA = view.worldToView(a).depth;
  const double depthB = view.worldToView(b).depth;
  if (depthA < near && depthB < near) return {};
  if (depthA < near) a += (b - a) * ((near - depthA) / (depthB - depthA));
  if (depthB < near) b += (a - b) * ((near - depthB) / (depthA - depthB));
  return ViewSegment{view.worldToView(a), view.worldToView(b), a, b};
}

Vec3 worldAtShare(const ViewSegment& segment, double share, bool isOrthographic) {
  double t = share;
  if (!isOrthographic) {
    const double toA = (1 - share) * segment.b.depth;
    const double toB = share * segment.a.depth;
    if (toA + toB > 0) t = toB / (toA + toB);
  }
  return segment.worldA + (segment.worldB - segment.worldA) * t;
}

std::optional<std::pair<double, double>> clipToRect(const ViewSegment& segment,
                                                    const PickRect& rect) {
  double low = 0, high = 1;
  const auto cut = [&](double start, double step, double from, double to) {
    if (step == 0) return start >= from && start <= to;
    const double t0 = (from - start) / step;
    const double t1 = (to - start) / step;
    low = std::max(low, std::min(t0, t1));
    high = std::min(high, std::max(t0, t1));
    return low <= high;
  };
  if (!cut(segment.a.x, segment.b.x - segment.a.x, rect.from.x, rect.to.x)) return {};
  if (!cut(segment.a.y, segment.b.y - segment.a.y, rect.from.y, rect.to.y)) return {};
  return std::pair{low, high};
}

Picker::Query::Query(Picker& picker, const SceneView& scene)
    : scene_(scene), view_(scene.camera, scene.port) {
  for (const RenderMesh& object : scene.meshes) {
    Target target;
    target.object = &object;
    target.entry = &picker.entry(object);
    target.rays = spatial::Accelerator::of(object.mesh);
    target.toObject = math::inverse(object.world);
    const DisplayStyle style = object.style.value_or(scene.options.style);
    target.isShaded = viewport::isPickable(object.state) && style != DisplayStyle::Wireframe;
    target.hides =
        target.isShaded && !object.xray && !scene.options.xray && target.toObject.has_value();
    targets_.push_back(std::move(target));
  }
}

bool Picker::Query::isPickable(std::size_t mesh, const PickOptions& options) const {
  const ObjectState state = scene_.meshes[mesh].state;
  return viewport::isPickable(state) && (!options.onlyHilited || state == ObjectState::Hilited);
}

bool Picker::Query::isVisible(const Vec3& point) const {
  const double depth = view_.worldToView(point).depth;
  const bool isOrthographic = view_.camera().orthographic;
  const double reach =
      isOrthographic ? std::max(depth, 0.0) : math::distance(point, view_.camera().eye());
  const double slack = 1.5 * view_.worldPerPixel(depth);
  if (reach <= slack) return true;
  const Vec3 away = -view_.towardsViewer(point);
  const Vec3 start = point - away * reach;
  return std::ranges::none_of(targets_, [&](const Target& target) {
    return target.hides &&
           target.rays->isHit(objectRay(target, start, away), rayOptions(target, reach - slack));
  });
}

math::Ray Picker::Query::objectRay(const Target& target, const Vec3& start,
                                   const Vec3& path) const {
  return {math::transformPoint(start, *target.toObject),
          math::transformVector(path, *target.toObject)};
}

spatial::RayOptions Picker::Query::rayOptions(const Target& target, double tMax) const {
  spatial::RayOptions options;
  options.tMax = tMax;
  options.frontFacingOnly = scene_.options.backFaceCulling;
  options.faceMask = target.entry->seenFaces;
  return options;
}

bool Picker::Query::isBackFace(const Target& target, FaceId face) const {
  const Vec3 normal =
      math::transformNormal(mesh::faceAreaVector(target.object->mesh, face), target.object->world);
  const Vec3 point = world(target, target.object->mesh.faceVertices(face)[0]);
  return math::dot(normal, view_.towardsViewer(point)) < 0;
}

bool Picker::Query::isCulled(const Target& target, std::span<const FaceId> faces) const {
  if (!scene_.options.backFaceCulling || !target.hides || faces.empty()) return false;
  return std::ranges::all_of(faces, [&](FaceId face) { return isBackFace(target, face); });
}

std::vector<FaceId> Picker::Query::facesNear(const Target& target, ViewPoint cursor,
                                             double tolerance) const {
  std::vector<FaceId> faces;
  if (!target.toObject) {
    faces.resize(at(target.object->mesh.faceCount()));
    std::iota(faces.begin(), faces.end(), 0);
    return faces;
  }
  const auto corner = [&](double x, double y) {
    const ViewRay ray = view_.viewToWorld({cursor.x + x * tolerance, cursor.y + y * tolerance});
    return ViewRay{math::transformPoint(ray.nearPoint, *target.toObject),
                   math::transformPoint(ray.farPoint, *target.toObject)};
  };
  const ViewRay corners[4] = {corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1)};
  const ViewRay middle = corner(0, 0);
  const Vec3 inside = (middle.nearPoint + middle.farPoint) * 0.5;
  spatial::PickRegion region;
  const auto add = [&](const Vec3& a, const Vec3& b, const Vec3& c) {
    math::Plane plane(a, math::cross(b - a, c - a));
    if (plane.signedDistance(inside) > 0) plane = math::Plane(a, -plane.normal);
    region.push_back(plane);
  };
  for (int i = 0; i < 4; ++i)
    add(corners[i].nearPoint, corners[i].farPoint, corners[(i + 1) % 4].farPoint);
  add(corners[0].nearPoint, corners[1].nearPoint, corners[2].nearPoint);
  add(corners[0].farPoint, corners[1].farPoint, corners[2].farPoint);
  target.entry->tree.collect(region, faces);
  return faces;
}

std::optional<PickHit> Picker::Query::best(std::vector<PickHit>& candidates,
                                           double tolerance) const {
  // Nearest first, so that few are tested for what hides them: all beyond the first visible one's
  // band are out.
  std::ranges::sort(candidates, {}, &PickHit::depth);
  std::optional<PickHit> found;
  double limit = 0;
  const auto rank = [](const PickHit& hit) {
    return std::tuple(hit.pixels, hit.mesh, hit.component);
  };
  for (const PickHit& hit : candidates) {
    if (found && hit.depth > limit) break;
    if (found && rank(hit) >= rank(*found)) continue;
    if (!isVisible(hit.point)) continue;
    if (!found) limit = hit.depth + 2 * tolerance * view_.worldPerPixel(hit.depth);
    found = hit;
  }
  return found;
}

std::optional<PickHit> Picker::Query::nearestVertex(ViewPoint cursor,
                                                    const PickOptions& options) const {
  std::vector<PickHit> candidates;
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    if (!isPickable(i, options)) continue;
    const Target& target = targets_[i];
    const mesh::Mesh& mesh = target.object->mesh;
    std::vector<VertexId> vertices = target.entry->looseVertices;
    for (const FaceId face : facesNear(target, cursor, options.vertexTolerance))
      for (const VertexId v : mesh.faceVertices(face)) vertices.push_back(v);
    std::ranges::sort(vertices);
    vertices.erase(std::unique(vertices.begin(), vertices.end()), vertices.end());
    for (const VertexId v : vertices) {
      const Vec3 point = world(target, v);
      const ViewPosition at = view_.worldToView(point);
      const double pixels = std::hypot(at.x - cursor.x, at.y - cursor.y);
      const bool isNear =
          at.inFront && at.depth >= view_.camera().nearClip && pixels <= options.vertexTolerance;
      if (!isNear || isCulled(target, mesh.adjacency().vertexFaces(v))) continue;
      candidates.push_back({mesh::ComponentType::Vertex, i, v, point, at.depth, pixels});
    }
  }
  return best(candidates, options.vertexTolerance);
}

std::optional<PickHit> Picker::Query::nearestEdge(ViewPoint cursor,
                                                  const PickOptions& options) const {
  std::vector<PickHit> candidates;
  const double tolerance = options.edgeTolerance;
  const PickRect around{{cursor.x - tolerance, cursor.y - tolerance},
                        {cursor.x + tolerance, cursor.y + tolerance}};
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    if (!isPickable(i, options)) continue;
    const Target& target = targets_[i];
    const mesh::Mesh& mesh = target.object->mesh;
    std::vector<EdgeId> edges = target.entry->looseEdges;
    for (const FaceId face : facesNear(target, cursor, tolerance))
      for (const EdgeId e : mesh.faceEdges(face)) edges.push_back(e);
    std::ranges::sort(edges);
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    for (const EdgeId e : edges) {
      const auto segment =
          projectSegment(view_, world(target, mesh.edge(e).a), world(target, mesh.edge(e).b));
      if (!segment || !clipToRect(*segment, around)) continue;
      const double share =
          math::closestOnSegment({segment->a.x, segment->a.y, 0}, {segment->b.x, segment->b.y, 0},
                                 {cursor.x, cursor.y, 0});
      const Vec3 point = worldAtShare(*segment, share, view_.camera().orthographic);
      const ViewPosition at = view_.worldToView(point);
      const double pixels = std::hypot(at.x - cursor.x, at.y - cursor.y);
      if (pixels > tolerance || isCulled(target, mesh.adjacency().edgeFaces(e))) continue;
      candidates.push_back({mesh::ComponentType::Edge, i, e, point, at.depth, pixels});
    }
  }
  return best(candidates, tolerance);
}

std::optional<PickHit> Picker::Query::surface(
    ViewPoint cursor, const std::function<bool(std::size_t)>& counts) const {
  const ViewRay seen = view_.viewToWorld(cursor);
  const Vec3 path = seen.farPoint - seen.nearPoint;
  std::optional<PickHit> found;
  double limit = 1;
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    const Target& target = targets_[i];
    if (!target.toObject || (!target.hides && !counts(i))) continue;
    const auto hit =
        target.rays->closestHit(objectRay(target, seen.nearPoint, path), rayOptions(target, limit));
    if (!hit) continue;
    limit = hit->t;
    const Vec3 point = seen.nearPoint + path * hit->t;
    found =
        PickHit{mesh::ComponentType::Face, i, hit->face, point, view_.worldToView(point).depth, 0};
  }
  return found && counts(found->mesh) ? found : std::nullopt;
}

}  // namespace host::viewport
