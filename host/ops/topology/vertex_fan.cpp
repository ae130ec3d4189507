#include "host/ops/topology/vertex_fan.h"

#include <algorithm>

#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

EdgeId edgeInto(const mesh::Mesh& mesh, CornerId c) {
  const FaceId f = mesh.adjacency().cornerFace(c);
  return mesh.cornerEdge(c > mesh.firstCorner(f) ? c - 1 : mesh.firstCorner(f + 1) - 1);
}

}  // namespace

VertexFan vertexFan(const mesh::Mesh& mesh, VertexId vertex) {
  VertexFan fan;
  const auto all = mesh.adjacency().vertexCorners(vertex);
  if (all.empty()) return fan;
  // The corner that walks out along an edge, and the one that comes in along it; none if there is
  // not exactly one.
  const auto outAlong = [&](EdgeId e) {
    CornerId found = kNone;
    for (const CornerId c : all)
      if (mesh.cornerEdge(c) == e) found = found == kNone ? c : CornerId(-2);
    return found;
  };
  const auto hasInAlong = [&](EdgeId e) {
    return std::any_of(all.begin(), all.end(), [&](CornerId c) { return edgeInto(mesh, c) == e; });
  };
  CornerId start = all[0];
  for (const CornerId c : all)
    if (!hasInAlong(mesh.cornerEdge(c))) {
      start = c;
      break;
    }
  CornerId c = start;
  do {
    fan.corners.push_back(c);
    fan.edges.push_back(mesh.cornerEdge(c));
    if (fan.corners.size() > all.size()) return fan;
    c = outAlong(edgeInto(mesh, c));
  } while (c >= 0 && c != start);
  fan.edges.push_back(edgeInto(mesh, fan.corners.back()));
  fan.isClosed = c == start;
  fan.isManifold = c != -2 && fan.corners.size() == all.size();
  std::vector<EdgeId> distinct(fan.edges.begin(), fan.edges.end() - (fan.isClosed ? 1 : 0));
  std::sort(distinct.begin(), distinct.end());
  if (std::adjacent_find(distinct.begin(), distinct.end()) != distinct.end())
    fan.isManifold = false;
  return fan;
}

void turnFan(VertexFan& fan, std::size_t first) {
  fan.edges.pop_back();
  std::rotate(fan.corners.begin(), fan.corners.begin() + static_cast<std::ptrdiff_t>(first),
              fan.corners.end());
  std::rotate(fan.edges.begin(), fan.edges.begin() + static_cast<std::ptrdiff_t>(first),
              fan.edges.end());
  fan.edges.push_back(fan.edges.front());
}

}  // namespace host::ops
