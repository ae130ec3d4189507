#include "host/ops/topology/bevel_weld.h"

#include <algorithm>
#include <numeric>

#include "host/ops/topology/weld.h"

namespace host::ops {
namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

Mesh WeldedBevel::placedAs(const Mesh& open, VertexId firstNew) const {
  Mesh placed = mesh;
  const auto from = open.points();
  const auto to = placed.editPoints();
  for (std::size_t i = 0; i < kept.size(); ++i)
    if (kept[i] != kNone && at(targets[i]) == i) to[at(kept[i])] = from[at(firstNew) + i];
  for (int s = 0; s < placed.uvSetCount(); ++s)
    if (!placed.uvSet(s).cornerIds.empty()) placed.editUvSet(s).points = open.uvSet(s).points;
  return placed;
}

bool WeldedBevel::keepsUvsOf(const Mesh& open) const {
  for (int s = 0; s < mesh.uvSetCount(); ++s)
    if (mesh.uvSet(s).points.size() != open.uvSet(s).points.size()) return false;
  return true;
}

std::vector<Index> joinedVertices(const Mesh& open, VertexId firstNew,
                                  std::span<const mesh::EdgeVertices> newEdges,
                                  const math::Matrix4& space, double tolerance) {
  const bool isPlain = math::isIdentity(space);
  const auto place = [&](VertexId v) {
    return isPlain ? open.point(v) : math::transformPoint(open.point(v), space);
  };
  JoinedSets joined(at(open.vertexCount() - firstNew));
  bool isAny = false;
  for (const auto& [a, b] : newEdges) {
    if (math::distance(place(a), place(b)) >= tolerance) continue;
    joined.join(a - firstNew, b - firstNew);
    isAny = true;
  }
  std::vector<Index> targets;
  if (!isAny) return targets;
  targets.resize(at(open.vertexCount() - firstNew));
  for (std::size_t i = 0; i < targets.size(); ++i)
    targets[i] = joined.lowest(static_cast<Index>(i));
  return targets;
}

std::shared_ptr<const WeldedBevel> weldBevel(const BevelledMesh& built, Mesh open,
                                             std::vector<Index> targets) {
  const auto made = std::make_shared<WeldedBevel>();
  std::vector<VertexId> all(at(open.vertexCount()));
  std::iota(all.begin(), all.end(), 0);
  for (std::size_t i = 0; i < targets.size(); ++i)
    all[at(built.firstNew) + i] = built.firstNew + targets[i];
  made->mesh = std::move(open);
  made->targets = std::move(targets);
  const EditMaps welded = weldVertices(made->mesh, all);
  made->kept.assign(welded.vertices.begin() + built.firstNew, welded.vertices.end());
  BevelEdgesResult result = built.result;
  const auto follow = [](std::vector<Index>& ids, const std::vector<Index>& map) {
    for (Index& id : ids)
      if (id != kNone) id = map[at(id)];
  };
  follow(result.maps.vertices, welded.vertices);
  follow(result.maps.edges, welded.edges);
  follow(result.maps.faces, welded.faces);
  for (auto* faces : {&result.strips, &result.caps}) {
    follow(*faces, welded.faces);
    std::erase(*faces, kNone);
  }
  made->softened = sidesOfNewFaces(made->mesh, result);
  made->result = std::make_shared<const BevelEdgesResult>(std::move(result));
  return made;
}

std::vector<EdgeSides> sidesOfNewFaces(const Mesh& mesh, const BevelEdgesResult& result) {
  std::vector<EdgeId> edges;
  for (const auto* faces : {&result.strips, &result.caps})
    for (const FaceId f : *faces)
      edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
  return sidesOfEdges(mesh, sortedIds(edges));
}

}  // namespace host::ops
