#include "host/mesh/walks.h"

#include <algorithm>

#include "host/mesh/adjacency.h"

namespace host::mesh {

namespace {

/// Walks from `start` both ways. A step is (edge, side) -> (edge, side) and leads back the way it
/// came, so a run that closes can only close at its start; `limit` guards against steps that break
/// this on non-manifold input.
template <class Side, class Step>
EdgeWalk walkBothWays(EdgeId start, Side first, Side second, Index limit, Step&& step) {
  EdgeWalk walk;
  const auto go = [&](Side side, EdgeId end) {
    EdgeId e = start;
    while (static_cast<Index>(walk.edges.size()) < limit && step(e, side)) {
      if (e == start) return true;
      if (e == end) break;
      walk.edges.push_back(e);
    }
    return false;
  };
  walk.isClosed = go(first, kNone);
  if (walk.isClosed) {
    walk.edges.insert(walk.edges.begin(), start);
    return walk;
  }
  std::ranges::reverse(walk.edges);
  walk.edges.push_back(start);
  // Both ways may end at one and the same non-manifold edge.
  go(second, walk.edges.front());
  return walk;
}

EdgeId nextOnBorder(const Mesh& mesh, EdgeId edge, VertexId vertex) {
  const Adjacency& adjacency = mesh.adjacency();
  EdgeId next = kNone;
  for (EdgeId e : adjacency.vertexEdges(vertex)) {
    if (e == edge || !adjacency.isBorderEdge(e)) continue;
    if (next != kNone) return kNone;
    next = e;
  }
  return next;
}

template <class Next>
EdgeWalk walkVertices(const Mesh& mesh, EdgeId edge, Next&& next) {
  const EdgeVertices ends = mesh.edge(edge);
  return walkBothWays(edge, ends.b, ends.a, mesh.edgeCount() + 1, [&](EdgeId& e, VertexId& v) {
    const EdgeId following = next(mesh, e, v);
    if (following == kNone) return false;
    e = following;
    v = mesh.edge(e).other(v);
    return true;
  });
}

}  // namespace

EdgeId nextInLoop(const Mesh& mesh, EdgeId edge, VertexId vertex) {
  const Adjacency& adjacency = mesh.adjacency();
  const auto edges = adjacency.vertexEdges(vertex);
  if (edges.size() != 4 || adjacency.vertexCorners(vertex).size() != 4) return kNone;
  const auto near = adjacency.edgeFaces(edge);
  if (near.size() != 2) return kNone;
  EdgeId opposite = kNone;
  for (EdgeId e : edges) {
    const auto faces = adjacency.edgeFaces(e);
    if (faces.size() != 2) return kNone;
    if (e == edge || std::ranges::find_first_of(faces, near) != faces.end()) continue;
    if (opposite != kNone) return kNone;
    opposite = e;
  }
  return opposite;
}

EdgeId oppositeInQuad(const Mesh& mesh, FaceId face, EdgeId edge) {
  const auto edges = mesh.faceEdges(face);
  if (edges.size() != 4) return kNone;
  for (std::size_t i = 0; i < 4; ++i)
    if (edges[i] == edge) return edges[(i + 2) % 4];
  return kNone;
}

EdgeWalk edgeLoop(const Mesh& mesh, EdgeId edge) {
  if (mesh.adjacency().isBorderEdge(edge)) return borderWalk(mesh, edge);
  return walkVertices(mesh, edge, nextInLoop);
}

EdgeWalk borderWalk(const Mesh& mesh, EdgeId edge) {
  if (!mesh.adjacency().isBorderEdge(edge)) return {};
  return walkVertices(mesh, edge, nextOnBorder);
}

EdgeWalk edgeRing(const Mesh& mesh, EdgeId edge) {
  const Adjacency& adjacency = mesh.adjacency();
  const auto faces = adjacency.edgeFaces(edge);
  if (faces.empty() || faces.size() > 2) return {{edge}, false};
  const FaceId second = faces.size() == 2 ? faces[1] : kNone;
  return walkBothWays(edge, faces[0], second, mesh.edgeCount() + 1, [&](EdgeId& e, FaceId& f) {
    if (f == kNone) return false;
    const EdgeId opposite = oppositeInQuad(mesh, f, e);
    if (opposite == kNone || opposite == e) return false;
    const auto around = adjacency.edgeFaces(opposite);
    if (around.size() > 2)
      f = kNone;
    else
      f = around.size() == 1 ? kNone : around[around[0] == f ? 1 : 0];
    e = opposite;
    return true;
  });
}

std::vector<EdgeWalk> allBorders(const Mesh& mesh) {
  const Adjacency& adjacency = mesh.adjacency();
  std::vector<EdgeWalk> borders;
  PerElement<EdgeId, std::uint8_t> isMet(mesh.edgeCount(), 0);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    if (isMet[e] || !adjacency.isBorderEdge(e)) continue;
    borders.push_back(borderWalk(mesh, e));
    for (EdgeId met : borders.back().edges) isMet[met] = 1;
  }
  return borders;
}

std::vector<EdgeId> partOfWalk(const EdgeWalk& walk, EdgeId from, EdgeId to) {
  const auto& edges = walk.edges;
  const auto count = static_cast<std::ptrdiff_t>(edges.size());
  const auto i = std::ranges::find(edges, from) - edges.begin();
  const auto j = std::ranges::find(edges, to) - edges.begin();
  if (i == count || j == count) return {};
  const auto forward = (j - i + count) % count, backward = (i - j + count) % count;
  const bool goesForward = walk.isClosed ? forward <= backward : i <= j;
  const auto steps = goesForward ? forward : backward;
  std::vector<EdgeId> part;
  for (std::ptrdiff_t k = 0; k <= steps; ++k)
    part.push_back(edges[static_cast<std::size_t>((i + (goesForward ? k : count - k)) % count)]);
  return part;
}

std::vector<VertexId> verticesOfWalk(const Mesh& mesh, const EdgeWalk& walk) {
  std::vector<VertexId> vertices;
  if (walk.edges.empty()) return vertices;
  const EdgeVertices first = mesh.edge(walk.edges[0]);
  VertexId v = first.a;
  if (walk.edges.size() > 1) {
    const EdgeVertices second = mesh.edge(walk.edges[1]);
    // Two edges that share both ends make a closed run of two; either start does.
    v = second.has(first.b) ? first.a : first.b;
  }
  vertices.push_back(v);
  for (EdgeId e : walk.edges) {
    v = mesh.edge(e).other(v);
    vertices.push_back(v);
  }
  if (walk.isClosed) vertices.pop_back();
  return vertices;
}

}  // namespace host::mesh
