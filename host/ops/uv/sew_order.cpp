#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <queue>

#include "host/mesh/adjacency.h"
#include "host/ops/uv/sew_plan.h"
#include "host/ops/uv/shell_growth.h"

namespace host::ops {

namespace {

using math::Vec3;
using mesh::Adjacency;
using mesh::Mesh;

Vec3 areaVector(const Mesh& mesh, FaceId face) {
  const auto loop = mesh.faceVertices(face);
  const Vec3 origin = mesh.point(loop[0]);
  Vec3 sum;
  for (std::size_t i = 1; i + 1 < loop.size(); ++i)
    sum += math::cross(mesh.point(loop[i]) - origin, mesh.point(loop[i + 1]) - origin);
  return sum;
}

/// How much a cut along an edge is hidden: 1 on a flat surface, more on folds, most on creases.
double hiding(const Mesh& mesh, EdgeId edge) {
  double factor = 1 + std::min(static_cast<double>(mesh.edgeCrease(edge)), 10.0);
  if (!mesh.isEdgeSmooth(edge)) factor *= 2;
  const Adjacency& adjacency = mesh.adjacency();
  const auto walks = adjacency.edgeCorners(edge);
  if (walks.size() != 2) return factor;
  const Vec3 first = math::normalized(areaVector(mesh, adjacency.cornerFace(walks[0])));
  const Vec3 second = math::normalized(areaVector(mesh, adjacency.cornerFace(walks[1])));
  const Vec3 along = mesh.point(mesh.cornerVertex(adjacency.nextCorner(walks[0]))) -
                     mesh.point(mesh.cornerVertex(walks[0]));
  const double fold = std::atan2(math::dot(math::cross(first, second), math::normalized(along)),
                                 math::dot(first, second));
  // Across a valley the second normal turns back against the way the first face walks the edge.
  return factor * (fold < 0 ? 1 + 2 * -fold : 1 + fold);
}

/// Shortest ways along the plan's edges, from the borders that stay.
class Ways {
 public:
  Ways(const Mesh& mesh, int uvSet, const SewPlan& plan)
      : mesh_(mesh), uvSet_(uvSet), plan_(plan), far_(at(mesh.vertexCount()), kFar) {
    isTree_.assign(plan.edges.size(), 0);
    startAtBorders();
    run();
    // Ways start on creases if there are any, because all loops go through their start.
    std::vector<std::size_t> starts(plan.edges.size());
    std::iota(starts.begin(), starts.end(), std::size_t{0});
    constexpr double kMarked = 2;
    std::ranges::stable_sort(starts, [&](std::size_t a, std::size_t b) {
      return std::max(plan.hiding[a], kMarked) > std::max(plan.hiding[b], kMarked);
    });
    for (const std::size_t slot : starts) {
      const VertexId v = mesh.edge(plan.edges[slot]).a;
      if (far_[at(v)] != kFar) continue;
      far_[at(v)] = 0;
      queue_.push({0, v, kNone});
      run();
    }
  }
  [[nodiscard]] double distance(VertexId v) const { return far_[at(v)]; }
  [[nodiscard]] bool isTree(Index slot) const { return isTree_[at(slot)] != 0; }

 private:
  static constexpr double kFar = std::numeric_limits<double>::infinity();
  struct Entry {
    double far;
    VertexId vertex;
    Index slot;  ///< by which it was reached
    friend bool operator>(const Entry& a, const Entry& b) {
      return a.far != b.far ? a.far > b.far : a.vertex > b.vertex;
    }
  };

  void startAtBorders() {
    const Adjacency& adjacency = mesh_.adjacency();
    std::vector<std::uint8_t> isMet(far_.size(), 0);
    const auto isStaying = [&](EdgeId e) {
      if (plan_.slotOfEdge[at(e)] != kNone) return false;
      for (const CornerId c : adjacency.edgeCorners(e))
        if (mesh_.cornerUv(uvSet_, c) != kNone) return !isUvClosed(mesh_, uvSet_, e);
      return false;
    };
    for (const EdgeId e : plan_.edges)
      for (const VertexId v : {mesh_.edge(e).a, mesh_.edge(e).b}) {
        if (isMet[at(v)]++) continue;
        if (!std::ranges::any_of(adjacency.vertexEdges(v), isStaying)) continue;
        far_[at(v)] = 0;
        queue_.push({0, v, kNone});
      }
  }

  void run() {
    const Adjacency& adjacency = mesh_.adjacency();
    while (!queue_.empty()) {
      const Entry entry = queue_.top();
      queue_.pop();
      if (entry.far > far_[at(entry.vertex)]) continue;
      if (entry.slot != kNone) {
        if (isDone_.empty()) isDone_.assign(far_.size(), 0);
        if (isDone_[at(entry.vertex)]++) continue;
        isTree_[at(entry.slot)] = 1;
      }
      for (const EdgeId e : adjacency.vertexEdges(entry.vertex)) {
        const Index slot = plan_.slotOfEdge[at(e)];
        if (slot == kNone) continue;
        const VertexId other = mesh_.edge(e).other(entry.vertex);
        const double far = entry.far + plan_.openCost[at(slot)];
        if (!(far < far_[at(other)])) continue;
        far_[at(other)] = far;
        queue_.push({far, other, slot});
      }
    }
  }

  const Mesh& mesh_;
  int uvSet_;
  const SewPlan& plan_;
  std::vector<double> far_;
  std::vector<std::uint8_t> isTree_, isDone_;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue_;
};

}  // namespace

SewPlan startSewPlan(const Mesh& mesh, std::vector<EdgeId> edges) {
  SewPlan plan;
  plan.slotOfEdge.assign(at(mesh.edgeCount()), kNone);
  plan.openCost.reserve(edges.size());
  for (std::size_t slot = 0; slot < edges.size(); ++slot) {
    const EdgeId e = edges[slot];
    plan.slotOfEdge[at(e)] = static_cast<Index>(slot);
    const double length = math::distance(mesh.point(mesh.edge(e).a), mesh.point(mesh.edge(e).b));
    plan.hiding.push_back(hiding(mesh, e));
    plan.openCost.push_back(std::isfinite(length) ? length / plan.hiding.back() : 0);
  }
  plan.isClosed.assign(edges.size(), 0);
  plan.isRefused.assign(edges.size(), 0);
  plan.edges = std::move(edges);
  return plan;
}

std::vector<Index> joiningOrder(const Mesh& mesh, int uvSet, const SewPlan& plan) {
  const Ways ways(mesh, uvSet, plan);
  struct Rank {
    double loop;  ///< the longer, the earlier
    Index slot;
  };
  std::vector<Rank> ranks(plan.edges.size());
  for (std::size_t i = 0; i < ranks.size(); ++i) {
    const auto slot = static_cast<Index>(i);
    const mesh::EdgeVertices ends = mesh.edge(plan.edges[i]);
    const double loop = ways.distance(ends.a) + ways.distance(ends.b) + plan.openCost[i];
    // On a shortest way: after all others, which is what a negative rank says.
    ranks[i] = {ways.isTree(slot) ? -1 / (1 + loop) : loop, slot};
  }
  std::ranges::stable_sort(ranks, [](const Rank& a, const Rank& b) { return a.loop > b.loop; });
  std::vector<Index> order;
  order.reserve(ranks.size());
  for (const Rank& rank : ranks) order.push_back(rank.slot);
  return order;
}

}  // namespace host::ops
