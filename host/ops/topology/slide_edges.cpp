#include "host/ops/topology/slide_edges.h"

#include <cmath>
#include <map>

#include "host/math/box.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::ops {

namespace {

using math::Vec3;

/// Gives joined edges one direction: 1 from a to b, -1 the other way; 0 for the others.
std::vector<std::int8_t> directed(const Mesh& mesh, std::span<const EdgeId> edges) {
  const auto isListed = flagsOf(edges, mesh.edgeCount());
  PerElement<EdgeId, std::int8_t> direction(mesh.edgeCount(), 0);
  for (const EdgeId start : edges) {
    if (direction[start] != 0) continue;
    direction[start] = 1;
    std::vector<EdgeId> open{start};
    while (!open.empty()) {
      const EdgeId e = open.back();
      open.pop_back();
      const bool forward = direction[e] > 0;
      for (const VertexId v : {mesh.edge(e).a, mesh.edge(e).b}) {
        const bool isEnd = (v == mesh.edge(e).b) == forward;
        for (const EdgeId next : mesh.adjacency().vertexEdges(v)) {
          if (isListed[at(next)] == 0 || direction[next] != 0) continue;
          // Leaves the end, or arrives at the start.
          direction[next] = (mesh.edge(next).a == v) == isEnd ? 1 : -1;
          open.push_back(next);
        }
      }
    }
  }
  return direction;
}

/// The ways that each vertex may go on one side, by vertex; to neighbours, each once.
using Ways = std::map<VertexId, std::vector<VertexId>>;

Ways sideWays(const Mesh& mesh, const std::vector<EdgeId>& edges, bool left) {
  const auto isListed = flagsOf(edges, mesh.edgeCount());
  const auto direction = directed(mesh, edges);
  Ways ways;
  const auto add = [&](VertexId v, VertexId to, EdgeId along) {
    if (isListed[at(along)] != 0) return;
    std::vector<VertexId>& list = ways[v];
    if (std::find(list.begin(), list.end(), to) == list.end()) list.push_back(to);
  };
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (const EdgeId e : edges) {
    const VertexId from = direction[e] > 0 ? mesh.edge(e).a : mesh.edge(e).b;
    ways[mesh.edge(e).a];
    ways[mesh.edge(e).b];
    for (const CornerId c : adjacency.edgeCorners(e)) {
      // The face that walks the edge in its direction lies to the left.
      if ((mesh.cornerVertex(c) == from) != left) continue;
      const CornerId before = adjacency.previousCorner(c), next = adjacency.nextCorner(c),
                     after = adjacency.nextCorner(next);
      add(mesh.cornerVertex(c), mesh.cornerVertex(before), mesh.cornerEdge(before));
      add(mesh.cornerVertex(next), mesh.cornerVertex(after), mesh.cornerEdge(next));
    }
  }
  return ways;
}

}  // namespace

Result<void> slideEdges(Mesh& mesh, std::span<const EdgeId> listed,
                        const SlideEdgesOptions& options) {
  HOST_TRY(checkIds("edge", listed, mesh.edgeCount()));
  if (!std::isfinite(options.fraction))
    return fail(ErrorKind::BadArgument, "The fraction must be a finite number");
  const std::vector<EdgeId> edges = sortedIds(listed);
  using Direction = SlideEdgesOptions::Direction;
  const bool alongNormals = options.direction == Direction::Normal;
  const bool left = (options.direction == Direction::Left) == (options.fraction >= 0);
  const double fraction = alongNormals ? options.fraction : std::abs(options.fraction);
  std::map<VertexId, Vec3> steps;
  double shortest = math::Box::kInfinity;
  for (const auto& [v, ends] : sideWays(mesh, edges, left)) {
    Vec3 step;
    if (alongNormals) {
      double least = math::Box::kInfinity;
      for (const EdgeId e : mesh.adjacency().vertexEdges(v))
        least = std::min(least, length(mesh.point(mesh.edge(e).a) - mesh.point(mesh.edge(e).b)));
      step = mesh::vertexNormal(mesh, v) * least;
    } else if (!ends.empty()) {
      for (const VertexId end : ends) step += mesh.point(end) - mesh.point(v);
      step = step / static_cast<double>(ends.size());
    }
    if (const double size = length(step); size > 0) {
      shortest = std::min(shortest, size);
      steps[v] = step;
    }
  }
  const auto points = mesh.editPoints();
  for (const auto& [v, step] : steps) {
    const double share = options.isAbsolute ? fraction * shortest / length(step) : fraction;
    points[at(v)] = (Vec3(points[at(v)]) + step * share).toFloat();
  }
  return {};
}

}  // namespace host::ops
