#include "host/ops/smooth/average_vertices.h"

#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

using math::Vec3;

/// The mean over the neighbours of a vertex of what `of` gives for them.
template <class Of>
Vec3 meanAround(const Mesh& mesh, VertexId v, Of of) {
  const auto edges = mesh.adjacency().vertexEdges(v);
  Vec3 sum;
  for (const EdgeId e : edges) sum += of(mesh.edge(e).other(v));
  return sum / static_cast<double>(edges.size());
}

}  // namespace

Result<void> averageVertices(Mesh& mesh, std::span<const VertexId> vertices,
                             const AverageVerticesOptions& options) {
  constexpr int kMostIterations = 10000;
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  if (options.iterations < 0 || options.iterations > kMostIterations)
    return fail(ErrorKind::BadArgument, "The number of iterations must be 0 to {}, not {}",
                kMostIterations, options.iterations);
  for (const double value : {options.alpha, options.beta})
    if (!(value >= 0 && value <= 1))
      return fail(ErrorKind::BadArgument, "alpha and beta must be 0 to 1, not {}", value);
  std::vector<VertexId> moving = sortedIds(vertices);
  std::erase_if(moving, [&](VertexId v) { return mesh.adjacency().vertexEdges(v).empty(); });
  if (moving.empty() || options.iterations == 0) return {};

  std::vector<Vec3> first;
  for (const math::Vec3f& p : mesh.points()) first.emplace_back(p);
  std::vector<Vec3> now = first, back(first.size());
  for (int round = 0; round < options.iterations; ++round) {
    const std::vector<Vec3> before = now;
    for (const VertexId v : moving) {
      pollCancel(v);
      now[at(v)] = meanAround(mesh, v, [&](VertexId other) { return before[at(other)]; });
      back[at(v)] =
          now[at(v)] - (first[at(v)] * options.alpha + before[at(v)] * (1 - options.alpha));
    }
    for (const VertexId v : moving)
      now[at(v)] -= back[at(v)] * options.beta + meanAround(mesh, v, [&](VertexId other) {
                                                   return back[at(other)];
                                                 }) * (1 - options.beta);
  }
  const auto points = mesh.editPoints();
  for (const VertexId v : moving) points[at(v)] = now[at(v)].toFloat();
  return {};
}

}  // namespace host::ops
