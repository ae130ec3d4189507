#include "host/ops/topology/edge_flow.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/mesh/adjacency.h"
#include "host/mesh/components.h"

namespace host::ops {
namespace {

using math::Vec3;
using mesh::Mesh;

class Flow {
 public:
  Flow(const Mesh& mesh, std::span<const EdgeId> edges) : mesh_(mesh) {
    isListed_.assign(at(mesh.edgeCount()), 0);
    for (const EdgeId edge : edges) isListed_[at(edge)] = 1;
  }

  /// Where a vertex goes; nothing when what is around it does not say.
  [[nodiscard]] std::optional<Vec3> target(VertexId vertex, double amount) const {
    std::vector<EdgeId> across;
    for (const EdgeId edge : mesh_.adjacency().vertexEdges(vertex))
      if (isListed_[at(edge)] == 0) across.push_back(edge);
    if (across.size() != 2) return std::nullopt;
    const VertexId before = other(across[0], vertex), after = other(across[1], vertex);
    const Vec3 p = mesh_.point(before), n = mesh_.point(after), v = mesh_.point(vertex);
    const Vec3 a = beyond(across[0], before).value_or(p * 2 - n);
    const Vec3 b = beyond(across[1], after).value_or(n * 2 - p);
    const double toBefore = math::length(v - p), toAfter = math::length(n - v);
    if (!(toBefore + toAfter > 0)) return std::nullopt;
    const double t = toBefore / (toBefore + toAfter);
    const Vec3 straight = p + (n - p) * t;
    return straight + (curve(a, p, n, b, t) - straight) * amount;
  }

 private:
  [[nodiscard]] VertexId other(EdgeId edge, VertexId vertex) const {
    const auto ends = mesh_.edge(edge);
    return ends.a == vertex ? ends.b : ends.a;
  }

  /// The point on the other side of a vertex of four edges: at the end of the edge that shares no
  /// face with the one that leads there.
  [[nodiscard]] std::optional<Vec3> beyond(EdgeId edge, VertexId vertex) const {
    const std::span<const EdgeId> around = mesh_.adjacency().vertexEdges(vertex);
    if (around.size() != 4) return std::nullopt;
    for (const EdgeId next : around) {
      if (next == edge || shareFace(edge, next)) continue;
      return mesh_.point(other(next, vertex));
    }
    return std::nullopt;
  }
  [[nodiscard]] bool shareFace(EdgeId a, EdgeId b) const {
    for (const CornerId one : mesh_.adjacency().edgeCorners(a))
      for (const CornerId two : mesh_.adjacency().edgeCorners(b))
        if (mesh_.adjacency().cornerFace(one) == mesh_.adjacency().cornerFace(two)) return true;
    return false;
  }

  /// A cubic from p to n that leaves and arrives as the parabolas through a, p, n and p, n, b do by
  /// the lengths between them.
  static Vec3 curve(const Vec3& a, const Vec3& p, const Vec3& n, const Vec3& b, double t) {
    const double way = math::length(n - p);
    const Vec3 leaving = slope(a, p, n) * way, arriving = slope(p, n, b) * way;
    const double t2 = t * t, t3 = t2 * t;
    return p * (2 * t3 - 3 * t2 + 1) + leaving * (t3 - 2 * t2 + t) + n * (3 * t2 - 2 * t3) +
           arriving * (t3 - t2);
  }
  /// How a parabola through three points goes at the middle one, for each unit of length.
  static Vec3 slope(const Vec3& first, const Vec3& middle, const Vec3& last) {
    const double before = math::length(middle - first), after = math::length(last - middle);
    if (!(before > 0) || !(after > 0)) return {};
    return ((middle - first) * (after / before) + (last - middle) * (before / after)) /
           (before + after);
  }

  const Mesh& mesh_;
  std::vector<std::uint8_t> isListed_;
};

}  // namespace

Result<std::vector<VertexId>> editEdgeFlow(Mesh& mesh, std::span<const EdgeId> edges,
                                           double amount) {
  if (!std::isfinite(amount))
    return fail(ErrorKind::BadArgument, "The adjustment of the edge flow must be a finite number");
  std::vector<VertexId> vertices;
  for (const EdgeId edge : edges) {
    if (edge < 0 || edge >= mesh.edgeCount())
      return fail(ErrorKind::BadArgument, "There is no edge {}", edge);
    vertices.push_back(mesh.edge(edge).a);
    vertices.push_back(mesh.edge(edge).b);
  }
  mesh::sortUnique(vertices);
  const Mesh before = mesh;
  const Flow flow(before, edges);
  std::vector<VertexId> moved;
  for (const VertexId vertex : vertices) {
    const auto target = flow.target(vertex, amount);
    if (!target) continue;
    mesh.editPoints()[at(vertex)] = target->toFloat();
    moved.push_back(vertex);
  }
  return moved;
}

}  // namespace host::ops
