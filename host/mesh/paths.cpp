#include "host/mesh/paths.h"

#include <algorithm>
#include <queue>
#include <unordered_map>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::mesh {

namespace {

/// How a place was reached on the shortest way found so far.
struct Reached {
  double distance = 0;
  Index previous = kNone;  ///< place
  Index via = kNone;       ///< link from there
  bool isSettled = false;
};

/// Dijkstra from `from` until `to` is settled. `visit(place, link)` calls link(neighbour, by,
/// length) for each way on.
template <class Visit>
std::unordered_map<Index, Reached> search(Index from, Index to, Visit&& visit) {
  using Entry = std::pair<double, Index>;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
  std::unordered_map<Index, Reached> reached{{from, {}}};
  open.emplace(0.0, from);
  while (!open.empty()) {
    const auto [distance, place] = open.top();
    open.pop();
    Reached& here = reached[place];
    if (here.isSettled) continue;
    here.isSettled = true;
    if (place == to) break;
    visit(place, [&, at = place, base = distance](Index neighbour, Index by, double length) {
      const double total = base + length;
      const auto [found, isNew] = reached.try_emplace(neighbour, Reached{total, at, by, false});
      if (!isNew) {
        if (found->second.isSettled || found->second.distance <= total) return;
        found->second = {total, at, by, false};
      }
      open.emplace(total, neighbour);
    });
  }
  return reached;
}

}  // namespace

std::vector<EdgeId> shortestEdgePath(const Mesh& mesh, VertexId from, VertexId to) {
  const Adjacency& adjacency = mesh.adjacency();
  const auto reached = search(from, to, [&](VertexId v, auto&& link) {
    for (const EdgeId e : adjacency.vertexEdges(v)) {
      const VertexId other = mesh.edge(e).other(v);
      link(other, e, math::length(mesh.point(other) - mesh.point(v)));
    }
  });
  std::vector<EdgeId> path;
  for (auto at = reached.find(to); at != reached.end() && at->second.via != kNone;
       at = reached.find(at->second.previous))
    path.push_back(at->second.via);
  std::ranges::reverse(path);
  return path;
}

std::vector<FaceId> shortestFacePath(const Mesh& mesh, FaceId from, FaceId to) {
  const Adjacency& adjacency = mesh.adjacency();
  const auto reached = search(from, to, [&](FaceId f, auto&& link) {
    const Vec3 here = faceCenter(mesh, f);
    for (const EdgeId e : mesh.faceEdges(f))
      for (const FaceId other : adjacency.edgeFaces(e))
        if (other != f) link(other, e, math::length(faceCenter(mesh, other) - here));
  });
  std::vector<FaceId> path;
  if (!reached.contains(to)) return path;
  for (Index at = to; at != kNone; at = reached.at(at).previous) path.push_back(at);
  std::ranges::reverse(path);
  return path;
}

}  // namespace host::mesh
