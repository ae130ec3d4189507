#include "host/ops/topology/bevel_weld.h"

#include <algorithm>
#include <numeric>

#include "host/ops/topology/weld.h"

namespace host::ops {
namespace {}  // namespace

void WeldedBevel::follow(const Mesh& open, Mesh& placed) const {
  const auto from = open.points();
  const auto to = placed.editPoints();
  for (const auto& [there, here] : points) to[at(here)] = from[at(there)];
  for (std::size_t s = 0; s < uvs.size(); ++s) {
    if (uvs[s].empty()) continue;
    const auto& fromUvs = open.uvSet(static_cast<int>(s)).points;
    auto& toUvs = placed.editUvSet(static_cast<int>(s)).points;
    for (const auto& [there, here] : uvs[s]) toUvs[at(here)] = fromUvs[at(there)];
  }
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

std::shared_ptr<WeldedBevel> weldBevel(const BevelledMesh& built, const BevelUvs& uvs,
                                       const Mesh& open, std::vector<Index> targets) {
  const auto made = std::make_shared<WeldedBevel>();
  PerElement<VertexId, VertexId> all(open.vertexCount());
  std::iota(all.begin(), all.end(), 0);
  for (std::size_t i = 0; i < targets.size(); ++i)
    all[at(built.firstNew) + i] = built.firstNew + targets[i];
  made->mesh = open;
  const auto isSmooth = built.mesh.edgeSmooth();  // the open bevel may be softened
  made->mesh.setEdgeSmooth({isSmooth.begin(), isSmooth.end()});
  const WeldMaps welded = weldVertices(made->mesh, all);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const VertexId there = built.firstNew + static_cast<VertexId>(i);
    if (at(targets[i]) == i && welded.vertices[at(there)] != kNone)
      made->points.emplace_back(there, welded.vertices[at(there)]);
  }
  for (std::size_t s = 0; s < welded.uvs.size(); ++s) {
    auto& moves = made->uvs.emplace_back();
    for (const UvId id : uvs.placed(built, static_cast<int>(s)))
      if (const UvId now = welded.uvs[s].empty() ? id : welded.uvs[s][at(id)]; now != kNone)
        moves.emplace_back(id, now);
  }
  made->targets = std::move(targets);
  BevelEdgesResult result = built.result;
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
