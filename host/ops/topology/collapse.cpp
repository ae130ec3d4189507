#include "host/ops/topology/collapse.h"

#include <numeric>
#include <unordered_map>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/ops/topology/weld.h"

namespace host::ops {
namespace {

// Moves the UVs that listed edges join, face by face, to their means.
void collapseUvs(mesh::UvSet& set, const Mesh& mesh, std::span<const EdgeId> edges) {
  if (set.cornerIds.empty()) return;
  JoinedSets joined(set.points.size());
  std::vector<UvId> touched;
  for (const EdgeId e : edges)
    for (const CornerId c : mesh.adjacency().edgeCorners(e)) {
      const FaceId f = mesh.adjacency().cornerFace(c);
      const UvId a = set.cornerIds[c];
      const UvId b = set.cornerIds[c + 1 < mesh.firstCorner(f + 1) ? c + 1 : mesh.firstCorner(f)];
      if (a < 0 || b < 0) continue;
      joined.join(a, b);
      touched.push_back(a);
      touched.push_back(b);
    }
  touched = sortedIds(touched);
  struct Sum {
    double u = 0, v = 0;
    int count = 0;
  };
  std::unordered_map<UvId, Sum> sums;
  for (const UvId id : touched) {
    Sum& sum = sums[joined.lowest(id)];
    sum.u += set.points[at(id)].u;
    sum.v += set.points[at(id)].v;
    ++sum.count;
  }
  for (const auto& [id, sum] : sums)
    set.points[at(id)] = {static_cast<float>(sum.u / sum.count),
                          static_cast<float>(sum.v / sum.count)};
  // What joined a lower UV goes; the ids close up.
  std::vector<UvId> newIds(set.points.size());
  std::size_t kept = 0;
  for (std::size_t id = 0; id < newIds.size(); ++id) {
    pollCancel(id);
    if (joined.lowest(static_cast<UvId>(id)) != static_cast<UvId>(id)) continue;
    newIds[id] = static_cast<UvId>(kept);
    set.points[kept++] = set.points[id];
  }
  set.points.resize(kept);
  for (UvId& id : set.cornerIds)
    if (id >= 0) id = newIds[at(joined.lowest(id))];
}

}  // namespace

Result<CollapseResult> collapseEdges(Mesh& mesh, std::span<const EdgeId> edges) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  const std::vector<EdgeId> ids = sortedIds(edges);
  JoinedSets joined(at(mesh.vertexCount()));
  std::vector<VertexId> touched;
  for (const EdgeId e : ids) {
    pollCancel(e);
    const auto [a, b] = mesh.edge(e);
    joined.join(a, b);
    touched.push_back(a);
    touched.push_back(b);
  }
  touched = sortedIds(touched);
  std::unordered_map<VertexId, std::pair<math::Vec3, int>> sums;
  for (const VertexId v : touched) {
    pollCancel(v);
    auto& [sum, count] = sums[joined.lowest(v)];
    sum += mesh.point(v);
    ++count;
  }
  PerElement<VertexId, VertexId> targets(mesh.vertexCount());
  for (std::size_t v = 0; v < targets.size(); ++v)
    targets[v] = joined.lowest(static_cast<VertexId>(v));

  Mesh edited = mesh;
  for (int set = 0; set < mesh.uvSetCount(); ++set) collapseUvs(edited.editUvSet(set), mesh, ids);
  if (!sums.empty()) {
    const auto points = edited.editPoints();
    for (const auto& [v, sum] : sums) points[at(v)] = (sum.first / sum.second).toFloat();
  }
  CollapseResult result;
  result.maps = weldVertices(edited, targets);
  for (const auto& [v, sum] : sums)
    if (result.maps.vertices[at(v)] != kNone)
      result.vertices.push_back(result.maps.vertices[at(v)]);
  std::sort(result.vertices.begin(), result.vertices.end());
  mesh = std::move(edited);
  return result;
}

Result<CollapseResult> collapseFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  std::vector<EdgeId> edges;
  for (const FaceId f : faces)
    edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
  return collapseEdges(mesh, edges);
}

}  // namespace host::ops
