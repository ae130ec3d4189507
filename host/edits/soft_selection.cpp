#include "host/edits/soft_selection.h"

#include <algorithm>
#include <queue>

#include "host/mesh/adjacency.h"
#include "host/spatial/point_index.h"

namespace host::edits {

namespace {

using Reach = std::vector<double>;  ///< the distance of each vertex; infinite beyond the settings'

Reach straightReach(std::span<const math::Vec3> points, std::span<const VertexId> selected,
                    double distance) {
  std::vector<math::Vec3f> chosen;
  for (const VertexId v : selected) chosen.push_back(points[at(v)].toFloat());
  const spatial::PointIndex index(chosen);
  Reach reach(points.size(), spatial::PointIndex::kFar);
  for (std::size_t v = 0; v < points.size(); ++v) {
    const Index near = index.nearest(points[v], distance);
    if (near != kNone) reach[v] = length(points[v] - points[at(selected[at(near)])]);
  }
  return reach;
}

/// Dijkstra's algorithm from all selected vertices at once.
Reach surfaceReach(const mesh::Mesh& mesh, std::span<const math::Vec3> points,
                   std::span<const VertexId> selected, double distance) {
  using Entry = std::pair<double, VertexId>;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
  Reach reach(points.size(), spatial::PointIndex::kFar);
  for (const VertexId v : selected) {
    reach[at(v)] = 0;
    open.push({0, v});
  }
  while (!open.empty()) {
    const auto [way, v] = open.top();
    open.pop();
    if (way > reach[at(v)]) continue;
    for (const EdgeId e : mesh.adjacency().vertexEdges(v)) {
      const VertexId other = mesh.edge(e).a == v ? mesh.edge(e).b : mesh.edge(e).a;
      const double next = way + length(points[at(other)] - points[at(v)]);
      if (next > distance || next >= reach[at(other)]) continue;
      reach[at(other)] = next;
      open.push({next, other});
    }
  }
  return reach;
}

std::vector<SoftWeight> weightsOf(Reach reach, std::span<const VertexId> selected,
                                  const SoftSelection& settings) {
  for (const VertexId v : selected) reach[at(v)] = -1;
  std::vector<SoftWeight> weights;
  for (VertexId v = 0; at(v) < reach.size(); ++v) {
    const double way = reach[at(v)];
    if (way < 0) {
      weights.push_back({v, 1});
    } else if (way < settings.distance) {
      const double weight =
          std::clamp(math::rampAt(settings.curve, way / settings.distance)[0], 0.0, 1.0);
      if (weight > 0) weights.push_back({v, weight});
    }
  }
  return weights;
}

}  // namespace

std::vector<SoftWeight> softWeights(const mesh::Mesh& mesh, std::span<const VertexId> selected,
                                    const math::Matrix4& world, const SoftSelection& settings) {
  if (selected.empty()) return {};
  std::vector<math::Vec3> points;
  points.reserve(mesh.points().size());
  for (const math::Vec3f& p : mesh.points())
    points.push_back(math::transformPoint(math::Vec3(p), world));
  if (settings.falloff != SoftSelection::Falloff::Surface)
    return softWeights(points, selected, settings);
  return weightsOf(surfaceReach(mesh, points, selected, settings.distance), selected, settings);
}

std::vector<SoftWeight> softWeights(const std::vector<math::Vec3>& points,
                                    std::span<const VertexId> selected,
                                    const SoftSelection& settings) {
  if (selected.empty()) return {};
  return weightsOf(straightReach(points, selected, settings.distance), selected, settings);
}

}  // namespace host::edits
