#include "host/ops/topology/sew_edges.h"

#include <cmath>
#include <map>
#include <numeric>

#include "host/mesh/adjacency.h"
#include "host/ops/topology/weld.h"
#include "host/ops/uv/sew_uvs.h"

namespace host::ops {

namespace {

using math::Vec3;

/// A border edge as its face walks it, with its ends where distances are measured.
struct Side {
  EdgeId edge = kNone;
  VertexId from = kNone, to = kNone;
  Vec3 start, end;
  bool isTaken = false;
};

using Cell = std::array<std::int64_t, 3>;

class Sewing {
 public:
  Sewing(const Mesh& mesh, std::span<const EdgeId> edges, const SewEdgesOptions& options)
      : tolerance_(options.tolerance), size_(std::max(options.tolerance, 1e-6)) {
    for (const EdgeId e : edges) {
      if (!mesh.adjacency().isBorderEdge(e)) continue;
      const CornerId corner = mesh.adjacency().edgeCorners(e)[0];
      Side side{e,
                mesh.cornerVertex(corner),
                mesh.cornerVertex(mesh.adjacency().nextCorner(corner)),
                {},
                {}};
      side.start = math::transformPoint(mesh.point(side.from), options.space);
      side.end = math::transformPoint(mesh.point(side.to), options.space);
      sides_.push_back(side);
    }
    for (std::size_t i = 0; i < sides_.size(); ++i) cells_[cellOf(sides_[i])].push_back(i);
  }

  /// The pairs to be joined, each edge in one at most.
  std::vector<std::pair<std::size_t, std::size_t>> pairs() {
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t i = 0; i < sides_.size(); ++i) {
      if (sides_[i].isTaken) continue;
      const std::size_t other = nearest(i);
      if (other == i) continue;
      sides_[i].isTaken = sides_[other].isTaken = true;
      found.emplace_back(i, other);
    }
    return found;
  }
  [[nodiscard]] const Side& side(std::size_t i) const { return sides_[i]; }

 private:
  [[nodiscard]] Cell cellOf(const Side& side) const {
    const Vec3 middle = (side.start + side.end) * 0.5;
    Cell cell{};
    for (int axis = 0; axis < 3; ++axis)
      cell[static_cast<std::size_t>(axis)] =
          static_cast<std::int64_t>(std::floor(middle[axis] / size_));
    return cell;
  }

  /// The nearest side that runs the other way; `i` itself when there is none.
  [[nodiscard]] std::size_t nearest(std::size_t i) const {
    const Side& own = sides_[i];
    const Cell middle = cellOf(own);
    std::size_t best = i;
    double least = 1e300;
    for (std::int64_t n = 0; n < 27; ++n) {
      const auto found =
          cells_.find({middle[0] + n % 3 - 1, middle[1] + n / 3 % 3 - 1, middle[2] + n / 9 - 1});
      if (found == cells_.end()) continue;
      for (const std::size_t j : found->second) {
        const Side& other = sides_[j];
        if (j == i || other.isTaken) continue;
        const double a = length(own.start - other.end), b = length(own.end - other.start);
        if (std::max(a, b) > tolerance_ || a + b >= least) continue;
        least = a + b;
        best = j;
      }
    }
    return best;
  }

  double tolerance_, size_;
  std::vector<Side> sides_;
  std::map<Cell, std::vector<std::size_t>> cells_;
};

VertexId rootOf(std::vector<VertexId>& targets, VertexId v) {
  while (targets[at(v)] != v) v = targets[at(v)] = targets[at(targets[at(v)])];
  return v;
}

/// Puts each group of vertices in its middle.
void meet(Mesh& mesh, const std::vector<VertexId>& targets) {
  std::map<VertexId, std::pair<Vec3, double>> groups;
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    if (targets[at(v)] != v) groups[targets[at(v)]];
  const auto points = mesh.editPoints();
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    if (const auto group = groups.find(targets[at(v)]); group != groups.end()) {
      group->second.first += Vec3(points[at(v)]);
      group->second.second += 1;
    }
  for (const auto& [v, sum] : groups) points[at(v)] = (sum.first / sum.second).toFloat();
}

}  // namespace

Result<SewEdgesResult> sewEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                const SewEdgesOptions& options) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (!(options.tolerance >= 0) || !std::isfinite(options.tolerance))
    return fail(ErrorKind::BadArgument, "The tolerance must be a number from zero on");
  Sewing sewing(mesh, sortedIds(edges), options);
  const auto pairs = sewing.pairs();
  std::vector<VertexId> targets(at(mesh.vertexCount()));
  std::iota(targets.begin(), targets.end(), 0);
  const auto join = [&](VertexId a, VertexId b) {
    const VertexId one = rootOf(targets, a), two = rootOf(targets, b);
    targets[at(std::max(one, two))] = std::min(one, two);
  };
  for (const auto& [i, j] : pairs) {
    join(sewing.side(i).from, sewing.side(j).to);
    join(sewing.side(i).to, sewing.side(j).from);
  }
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) targets[at(v)] = rootOf(targets, v);
  meet(mesh, targets);
  SewEdgesResult result;
  result.maps = weldVertices(mesh, targets);
  for (const auto& [i, j] : pairs) {
    const EdgeId left = result.maps.edges[at(std::min(sewing.side(i).edge, sewing.side(j).edge))];
    if (left != kNone) result.sewn.push_back(left);
  }
  result.sewn = sortedIds(result.sewn);
  if (options.mergesUvs && !result.sewn.empty())
    for (int set = 0; set < mesh.uvSetCount(); ++set) (void)sewUvs(mesh, set, result.sewn);
  return result;
}

}  // namespace host::ops
