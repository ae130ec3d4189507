#include "host/viewport/picking.h"

#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/viewport/instance_id.h"
#include "host/viewport/pick_query.h"

namespace host::viewport {

Picker::Picker() = default;
Picker::~Picker() = default;

const Picker::Entry& Picker::entry(const RenderMesh& object) {
  std::unique_ptr<Entry>& slot = entries_[shapeOf(object.id)];
  const auto same = [](const auto& a, const auto& b) {
    return a.data() == b.data() && a.size() == b.size();
  };
  const mesh::Mesh& mesh = object.mesh;
  const bool sameFaces =
      slot && same(mesh.topology().cornerVertices, slot->mesh.topology().cornerVertices) &&
      same(mesh.topology().edges, slot->mesh.topology().edges) &&
      same(mesh.invisibleFaces(), slot->mesh.invisibleFaces()) &&
      mesh.vertexCount() == slot->mesh.vertexCount();
  if (!sameFaces)
    slot = std::make_unique<Entry>(mesh);
  else if (!same(mesh.points(), slot->mesh.points()))
    slot->tree.refit(mesh);
  slot->mesh = mesh;
  return *slot;
}

Picker::Entry::Entry(const mesh::Mesh& meshIn) : mesh(meshIn), tree(meshIn) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    if (adjacency.vertexFaces(v).empty()) looseVertices.push_back(v);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (adjacency.edgeFaces(e).empty()) looseEdges.push_back(e);
  if (mesh.invisibleFaces().empty()) return;
  seenFaces.assign(at(mesh.faceCount()), 1);
  for (const FaceId face : mesh.invisibleFaces()) seenFaces[at(face)] = 0;
}

std::optional<PickHit> Picker::pick(const SceneView& scene, ViewPoint cursor,
                                    const PickOptions& options) {
  Query query(*this, scene);
  if (options.vertices)
    if (auto hit = query.nearestVertex(cursor, options)) return hit;
  if (options.edges)
    if (auto hit = query.nearestEdge(cursor, options)) return hit;
  if (options.faces)
    if (auto hit =
            query.surface(cursor, [&](std::size_t i) { return query.isPickable(i, options); }))
      return hit;
  if (!options.objects) return {};
  PickOptions wires = options;
  wires.onlyHilited = false;
  auto object = query.nearestEdge(cursor, wires);
  const auto surface = query.surface(cursor, [&](std::size_t i) { return query.isShaded(i); });
  if (surface && (!object || surface->depth < object->depth)) object = surface;
  if (!object) return {};
  object->component = kNone;
  return object;
}

std::vector<PickHit> Picker::pickInside(const SceneView& scene, PickRect rect,
                                        const PickOptions& options) {
  const PickRect sorted{{std::min(rect.from.x, rect.to.x), std::min(rect.from.y, rect.to.y)},
                        {std::max(rect.from.x, rect.to.x), std::max(rect.from.y, rect.to.y)}};
  Query query(*this, scene);
  std::vector<PickHit> hits;
  for (std::size_t i = 0; i < scene.meshes.size(); ++i) query.inside(i, sorted, options, hits);
  return hits;
}

}  // namespace host::viewport
