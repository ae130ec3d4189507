#include "host/ops/uv/uv_topology.h"

#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

/// The UVs at both ends of a corner's edge, in the direction of the edge's own ends.
struct UvEnds {
  UvId a = kNone, b = kNone;
  [[nodiscard]] bool exist() const { return a != kNone && b != kNone; }
  friend bool operator==(const UvEnds&, const UvEnds&) = default;
};

UvEnds endsOf(const mesh::Mesh& mesh, const mesh::Adjacency& adjacency,
              const std::vector<UvId>& ids, CornerId corner) {
  const UvId first = ids[at(corner)], second = ids[at(adjacency.nextCorner(corner))];
  const bool isForward = mesh.cornerVertex(corner) == mesh.edge(mesh.cornerEdge(corner)).a;
  return isForward ? UvEnds{first, second} : UvEnds{second, first};
}

}  // namespace

GroupedIds groupByOwner(IdView ownerOfId, Index ownerCount) {
  GroupedIds groups;
  groups.start.assign(at(ownerCount) + 1, 0);
  for (Index owner : ownerOfId)
    if (owner != kNone) ++groups.start[at(owner) + 1];
  for (std::size_t i = 1; i < groups.start.size(); ++i) groups.start[i] += groups.start[i - 1];
  groups.items.resize(at(groups.start.back()));
  std::vector<Index> next(groups.start.begin(), groups.start.end() - 1);
  for (std::size_t id = 0; id < ownerOfId.size(); ++id)
    if (const Index owner = ownerOfId[id]; owner != kNone)
      groups.items[at(next[at(owner)]++)] = static_cast<Index>(id);
  return groups;
}

UvTopology uvTopology(const mesh::Mesh& mesh, int uvSet) {
  mesh::UvShells shells = mesh::findUvShells(mesh, uvSet);
  UvTopology topology;
  topology.shellCount = shells.count;
  topology.faces = groupByOwner(shells.ofFace, shells.count);
  topology.uvs = groupByOwner(shells.ofUv, shells.count);
  topology.shellOfFace = std::move(shells.ofFace);
  topology.shellOfUv = std::move(shells.ofUv);
  return topology;
}

GroupedIds cornersOfUvs(const mesh::Mesh& mesh, int uvSet) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  return groupByOwner(set.cornerIds, static_cast<Index>(set.points.size()));
}

std::vector<CornerId> uvTwins(const mesh::Mesh& mesh, int uvSet) {
  PerElement<CornerId, CornerId> twins(mesh.cornerCount(), kUvBorder);
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  if (ids.empty()) return twins;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const std::span<const CornerId> corners = adjacency.edgeCorners(e);
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const UvEnds ends = endsOf(mesh, adjacency, ids, corners[i]);
      if (!ends.exist()) continue;
      int matches = 0;
      CornerId match = kUvBorder;
      for (std::size_t k = 0; k < corners.size() && matches < 2; ++k)
        if (k != i && endsOf(mesh, adjacency, ids, corners[k]) == ends) {
          ++matches;
          match = corners[k];
        }
      twins[corners[i]] = matches > 1 ? kUvManyFaces : match;
    }
  }
  return twins;
}

std::vector<std::vector<CornerId>> uvBorderLoops(const mesh::Mesh& mesh, int uvSet,
                                                 std::span<const CornerId> twins) {
  std::vector<std::vector<CornerId>> loops;
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  if (ids.empty()) return loops;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  PerElement<CornerId, std::uint8_t> isDone(mesh.cornerCount(), 0);
  const auto isBorder = [&](CornerId c) { return ids[at(c)] != kNone && twins[c] == kUvBorder; };
  for (CornerId first = 0; first < mesh.cornerCount(); ++first) {
    if (isDone[first] || !isBorder(first)) continue;
    std::vector<CornerId> loop;
    for (CornerId c = first; !isDone[c];) {
      isDone[c] = 1;
      loop.push_back(c);
      // Turn around the end of the edge, from face to face, until the border goes on.
      CornerId next = adjacency.nextCorner(c);
      for (std::size_t steps = 0; !isBorder(next) && steps <= twins.size(); ++steps) {
        const CornerId across = twins[next];
        if (across < 0) break;  // three faces at an edge: no way to go on
        const bool isOpposed = mesh.cornerVertex(across) != mesh.cornerVertex(next);
        next = isOpposed ? adjacency.nextCorner(across) : adjacency.previousCorner(across);
        if (next == c) break;
      }
      if (!isBorder(next)) break;
      c = next;
    }
    loops.push_back(std::move(loop));
  }
  return loops;
}

}  // namespace host::ops
