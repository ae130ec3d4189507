#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/viewport/pick_query.h"

namespace host::viewport {

namespace {

bool contains(const PickRect& rect, const ViewPosition& at) {
  return at.x >= rect.from.x && at.x <= rect.to.x && at.y >= rect.from.y && at.y <= rect.to.y;
}

}  // namespace

void Picker::Query::inside(std::size_t mesh, const PickRect& rect, const PickOptions& options,
                           std::vector<PickHit>& hits) const {
  if (!viewport::isPickable(scene_.meshes[mesh].state)) return;
  if (isPickable(mesh, options)) {
    if (options.vertices) verticesInside(mesh, rect, hits);
    if (options.edges) edgesInside(mesh, rect, hits);
    if (options.faces) facesInside(mesh, rect, hits);
  }
  if (!options.objects) return;
  std::vector<PickHit> parts;
  edgesInside(mesh, rect, parts);
  if (parts.empty()) facesInside(mesh, rect, parts);
  if (parts.empty()) return;
  PickHit object = *std::ranges::min_element(parts, {}, &PickHit::depth);
  object.component = kNone;
  hits.push_back(object);
}

void Picker::Query::verticesInside(std::size_t mesh, const PickRect& rect,
                                   std::vector<PickHit>& hits) const {
  const Target& target = targets_[mesh];
  for (VertexId v = 0; v < target.object->mesh.vertexCount(); ++v) {
    const Vec3 point = world(target, v);
    const ViewPosition at = view_.worldToView(point);
    if (!at.inFront || at.depth < view_.camera().nearClip || !contains(rect, at)) continue;
    if (isCulled(target, target.object->mesh.adjacency().vertexFaces(v)) || !isVisible(point))
      continue;
    hits.push_back({mesh::ComponentType::Vertex, mesh, v, point, at.depth, 0});
  }
}

void Picker::Query::edgesInside(std::size_t mesh, const PickRect& rect,
                                std::vector<PickHit>& hits) const {
  const Target& target = targets_[mesh];
  for (EdgeId e = 0; e < target.object->mesh.edgeCount(); ++e) {
    const mesh::EdgeVertices ends = target.object->mesh.edge(e);
    const auto segment = projectSegment(view_, world(target, ends.a), world(target, ends.b));
    if (!segment) continue;
    const auto part = clipToRect(*segment, rect);
    if (!part || isCulled(target, target.object->mesh.adjacency().edgeFaces(e))) continue;
    const Vec3 point =
        worldAtShare(*segment, (part->first + part->second) / 2, view_.camera().orthographic);
    if (!isVisible(point)) continue;
    hits.push_back({mesh::ComponentType::Edge, mesh, e, point, view_.worldToView(point).depth, 0});
  }
}

/// A world point of the face whose picture lies inside the rectangle: the mean of the middles of
/// its edges' parts inside, or, for a face that surrounds the rectangle, what its centre shows.
std::optional<Vec3> Picker::Query::placeInside(const Target& target, FaceId face,
                                               const PickRect& rect) const {
  const std::span<const VertexId> loop = target.object->mesh.faceVertices(face);
  Vec3 sum;
  int parts = 0;
  std::vector<ViewPosition> outline;
  for (std::size_t k = 0; k < loop.size(); ++k) {
    const auto segment =
        projectSegment(view_, world(target, loop[k]), world(target, loop[(k + 1) % loop.size()]));
    if (!segment) continue;
    outline.push_back(segment->a);
    outline.push_back(segment->b);
    const auto part = clipToRect(*segment, rect);
    if (!part) continue;
    sum += worldAtShare(*segment, (part->first + part->second) / 2, view_.camera().orthographic);
    ++parts;
  }
  if (parts > 0) return sum / parts;
  const ViewPoint middle{(rect.from.x + rect.to.x) / 2, (rect.from.y + rect.to.y) / 2};
  bool isAround = false;
  for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
    const ViewPosition& a = outline[i];
    const ViewPosition& b = outline[j];
    if ((a.y > middle.y) != (b.y > middle.y) &&
        middle.x < (b.x - a.x) * (middle.y - a.y) / (b.y - a.y) + a.x)
      isAround = !isAround;
  }
  if (!isAround) return {};
  // The face's own plane under the rectangle's middle.
  const ViewRay ray = view_.viewToWorld(middle);
  const Vec3 a = world(target, loop[0]);
  const Vec3 normal = math::cross(world(target, loop[1]) - a, world(target, loop[2]) - a);
  const auto t = math::intersect(math::Ray{ray.nearPoint, ray.farPoint - ray.nearPoint},
                                 math::Plane(a, normal));
  return t ? std::optional(ray.nearPoint + (ray.farPoint - ray.nearPoint) * *t) : std::nullopt;
}

void Picker::Query::facesInside(std::size_t mesh, const PickRect& rect,
                                std::vector<PickHit>& hits) const {
  const Target& target = targets_[mesh];
  for (FaceId face = 0; face < target.object->mesh.faceCount(); ++face) {
    const FaceId faces[] = {face};
    const auto point = placeInside(target, face, rect);
    if (!point || isCulled(target, faces) || !isVisible(*point)) continue;
    hits.push_back(
        {mesh::ComponentType::Face, mesh, face, *point, view_.worldToView(*point).depth, 0});
  }
}

}  // namespace host::viewport
