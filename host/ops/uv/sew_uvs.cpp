#include "host/ops/uv/sew_uvs.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/components.h"
#include "host/mesh/shells.h"
#include "host/ops/query/uv_place.h"
#include "host/ops/uv/cut_uvs.h"
#include "host/ops/uv/sew_plan.h"
#include "host/ops/uv/shell_fit.h"
#include "host/ops/uv/shell_growth.h"
#include "host/ops/uv/uv_ids.h"

namespace host::ops {

namespace {

using mesh::Adjacency;
using mesh::Mesh;
using mesh::Vec2f;

/// Shells on their way to becoming one, by the first of them.
class Joining {
 public:
  Joining(const Mesh& mesh, int uvSet, const SewPlan& plan, bool moves, Index faceLimit)
      : mesh_(mesh),
        uvSet_(uvSet),
        plan_(plan),
        growth_(mesh, uvSet, facesOf(mesh, plan)),
        moves_(moves),
        faceLimit_(faceLimit) {
    const auto count = at(growth_.count());
    parent_.resize(count);
    std::iota(parent_.begin(), parent_.end(), 0);
    members_.resize(count);
    slots_.resize(count);
    for (std::size_t shell = 0; shell < count; ++shell) {
      faceCount_.push_back(static_cast<Index>(growth_.faces(static_cast<Index>(shell)).size()));
      members_[shell].push_back(static_cast<Index>(shell));
    }
    if (growth_.unfinished() != kNone) faceCount_[at(growth_.unfinished())] = mesh.faceCount();
    if (!moves_) return;
    for (std::size_t shell = 0; shell < count; ++shell)
      isReversed_.push_back(isReversed(static_cast<Index>(shell)));
    for (std::size_t slot = 0; slot < plan.edges.size(); ++slot)
      for (const CornerId walk : mesh.adjacency().edgeCorners(plan.edges[slot]))
        slots_[at(shellOf(walk))].push_back(static_cast<Index>(slot));
  }

  /// Joins the shells at an edge; false when they are one already or must stay apart.
  bool join(Index slot, std::vector<Vec2f>& points, bool& isRefused) {
    const auto walks = mesh_.adjacency().edgeCorners(plan_.edges[at(slot)]);
    Index large = find(shellOf(walks[0])), small = find(shellOf(walks[1]));
    if (large == small) return false;
    if (faceCount_[at(large)] < faceCount_[at(small)] ||
        (faceCount_[at(large)] == faceCount_[at(small)] && large > small))
      std::swap(large, small);
    if (faceLimit_ >= 0 && faceCount_[at(small)] > faceLimit_) {
      isRefused = true;
      return false;
    }
    if (moves_) {
      move(small, fit(slot, small, large, points), points);
      append(slots_[at(large)], slots_[at(small)]);
    }
    append(members_[at(large)], members_[at(small)]);
    faceCount_[at(large)] =
        std::min(faceCount_[at(large)] + faceCount_[at(small)], mesh_.faceCount());
    parent_[at(small)] = large;
    return true;
  }

  /// The shell that a corner's face lay in before anything was joined.
  [[nodiscard]] Index shellOf(CornerId corner) const {
    return growth_.ofFace(mesh_.adjacency().cornerFace(corner));
  }
  /// Faces of such a shell; the unfinished one counts as the largest.
  [[nodiscard]] Index size(Index shell) const {
    return shell == growth_.unfinished() ? mesh_.faceCount() + 1
                                         : static_cast<Index>(growth_.faces(shell).size());
  }

 private:
  static std::vector<FaceId> facesOf(const Mesh& mesh, const SewPlan& plan) {
    std::vector<FaceId> faces;
    faces.reserve(plan.edges.size() * 2);
    for (const EdgeId e : plan.edges)
      for (const FaceId f : mesh.adjacency().edgeFaces(e)) faces.push_back(f);
    return faces;
  }
  static void append(std::vector<Index>& to, std::vector<Index>& from) {
    to.insert(to.end(), from.begin(), from.end());
    from = {};
  }
  Index find(Index shell) {
    while (parent_[at(shell)] != shell)
      shell = parent_[at(shell)] = parent_[at(parent_[at(shell)])];
    return shell;
  }

  void move(Index shell, const Similarity& map, std::vector<Vec2f>& points) {
    const std::vector<UvId>& ids = mesh_.uvSet(uvSet_).cornerIds;
    if (isMoved_.empty()) isMoved_.assign(points.size(), 0);
    ++moveNumber_;
    for (const Index member : members_[at(shell)])
      for (const FaceId f : growth_.faces(member))
        for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
          const UvId uv = ids[at(c)];
          if (isMoved_[at(uv)] == moveNumber_) continue;
          isMoved_[at(uv)] = moveNumber_;
          points[at(uv)] = map.apply(points[at(uv)]);
        }
  }

  /// The edges between two shells that hang together with the given one.
  std::vector<Index> chainThrough(Index slot, Index small, Index large) {
    std::vector<Index> between;
    for (const Index each : slots_[at(small)]) {
      const auto walks = mesh_.adjacency().edgeCorners(plan_.edges[at(each)]);
      const Index a = find(shellOf(walks[0])), b = find(shellOf(walks[1]));
      if ((a == small && b == large) || (a == large && b == small)) between.push_back(each);
    }
    std::unordered_multimap<VertexId, Index> atVertex;
    for (const Index each : between) {
      pollCancel(each);
      const mesh::EdgeVertices ends = mesh_.edge(plan_.edges[at(each)]);
      atVertex.emplace(ends.a, each);
      atVertex.emplace(ends.b, each);
    }
    std::vector<Index> chain{slot};
    std::unordered_map<Index, bool> isIn{{slot, true}};
    for (std::size_t i = 0; i < chain.size(); ++i) {
      pollCancel(i);
      const mesh::EdgeVertices ends = mesh_.edge(plan_.edges[at(chain[i])]);
      for (const VertexId v : {ends.a, ends.b}) {
        const auto [first, last] = atVertex.equal_range(v);
        for (auto entry = first; entry != last; ++entry)
          if (isIn.emplace(entry->second, true).second) chain.push_back(entry->second);
        atVertex.erase(first, last);
      }
    }
    std::ranges::sort(chain);
    return chain;
  }

  Similarity fit(Index slot, Index small, Index large, const std::vector<Vec2f>& points) {
    // What joins a shell lies the same way up as it from then on.
    const bool isMirrored = isReversed_[at(small)] != isReversed_[at(large)];
    std::vector<FitPair> pairs;
    double length = 0;
    for (const Index each : chainThrough(slot, small, large))
      length += addPairs(each, small, points, pairs);
    double residual = 0;
    const Similarity whole = fitSimilarity(pairs, isMirrored, &residual);
    // A chain that is bent otherwise on the two sides is fitted at one edge.
    if (residual <= 0.02 * length) return whole;
    pairs.clear();
    addPairs(slot, small, points, pairs);
    return fitSimilarity(pairs, isMirrored);
  }

  /// The ends of an edge on the small side, with their places on the large side. Returns its
  /// length on the large side.
  double addPairs(Index slot, Index small, const std::vector<Vec2f>& points,
                  std::vector<FitPair>& pairs) {
    const Adjacency& adjacency = mesh_.adjacency();
    auto walks = adjacency.edgeCorners(plan_.edges[at(slot)]);
    CornerId own = walks[0], other = walks[1];
    if (find(shellOf(own)) != small) std::swap(own, other);
    const auto place = [&](CornerId c) { return points[at(mesh_.cornerUv(uvSet_, c))]; };
    const Vec2f start = place(own), end = place(adjacency.nextCorner(own));
    const Vec2f toStart = place(adjacency.nextCorner(other)), toEnd = place(other);
    const double length = std::hypot(double{toEnd.u} - toStart.u, double{toEnd.v} - toStart.v);
    const double weight = length > 0 && std::isfinite(length) ? length : 1e-12;
    pairs.push_back({start, toStart, weight});
    pairs.push_back({end, toEnd, weight});
    return std::isfinite(length) ? length : 0;
  }

  /// Whether most of a shell's area lies mirrored; some of its faces tell.
  [[nodiscard]] bool isReversed(Index shell) const {
    constexpr std::size_t kTold = 64;
    const std::vector<FaceId>& faces = growth_.faces(shell);
    double sum = 0;
    for (std::size_t i = 0; i < std::min(faces.size(), kTold); ++i)
      sum += uvArea(mesh_, uvSet_, faces[i]);
    return sum < 0;
  }

  const Mesh& mesh_;
  int uvSet_;
  const SewPlan& plan_;
  ShellGrowth growth_;
  bool moves_;
  Index faceLimit_;
  std::vector<Index> parent_, faceCount_;
  std::vector<std::vector<Index>> members_, slots_;
  std::vector<bool> isReversed_;
  std::vector<Index> isMoved_;
  Index moveNumber_ = 0;
};

/// UVs that become one, by the lowest of them.
class Welding {
 public:
  Welding(const Mesh& mesh, int uvSet) : mesh_(mesh), uvSet_(uvSet) {}

  void weld(EdgeId edge) {
    const Adjacency& adjacency = mesh_.adjacency();
    const auto walks = adjacency.edgeCorners(edge);
    join(walks[0], adjacency.nextCorner(walks[1]));
    join(adjacency.nextCorner(walks[0]), walks[1]);
  }

  /// Writes the ids and, with `rank` saying which shell's place counts most, the places.
  template <class Rank>
  void write(mesh::UvSet& set, const Rank& rank) {
    struct Member {
      UvId root, uv;
      Index rank;
    };
    std::vector<Member> members;
    for (const auto& [uv, corner] : cornerOf_) members.push_back({find(uv), uv, rank(corner)});
    std::ranges::sort(members, [](const Member& a, const Member& b) {
      return a.root != b.root ? a.root < b.root : a.rank != b.rank ? a.rank > b.rank : a.uv < b.uv;
    });
    std::vector<UvId> gone;
    for (std::size_t i = 0; i < members.size();) {
      pollCancel(i);
      double u = 0, v = 0;
      Index counted = 0;
      std::size_t end = i;
      for (; end < members.size() && members[end].root == members[i].root; ++end) {
        if (members[end].uv != members[end].root) gone.push_back(members[end].uv);
        if (members[end].rank != members[i].rank) continue;
        u += set.points[at(members[end].uv)].u;
        v += set.points[at(members[end].uv)].v;
        ++counted;
      }
      // One place that counts is kept to the bit.
      set.points[at(members[i].root)] =
          counted == 1 ? set.points[at(members[i].uv)]
                       : Vec2f{static_cast<float>(u / counted), static_cast<float>(v / counted)};
      i = end;
    }
    std::ranges::sort(gone);
    renumber(set, gone);
  }

 private:
  void join(CornerId a, CornerId b) {
    const UvId x = meet(a), y = meet(b);
    if (x != y) parent_[std::max(x, y)] = std::min(x, y);
  }
  UvId meet(CornerId corner) {
    const UvId uv = mesh_.cornerUv(uvSet_, corner);
    cornerOf_.try_emplace(uv, corner);
    return find(uv);
  }
  UvId find(UvId uv) {
    for (auto known = parent_.find(uv); known != parent_.end(); known = parent_.find(uv)) {
      const auto above = parent_.find(known->second);
      if (above != parent_.end()) known->second = above->second;
      uv = known->second;
    }
    return uv;
  }
  void renumber(mesh::UvSet& set, const std::vector<UvId>& gone) {
    const Adjacency& adjacency = mesh_.adjacency();
    std::vector<VertexId> vertices;
    for (const auto& [uv, corner] : cornerOf_) vertices.push_back(mesh_.cornerVertex(corner));
    mesh::sortUnique(vertices);
    for (const VertexId v : vertices)
      for (const CornerId c : adjacency.vertexCorners(v))
        if (UvId& uv = set.cornerIds[c]; uv != kNone) uv = find(uv);
    dropUnusedUvs(set, gone);
  }

  const Mesh& mesh_;
  int uvSet_;
  std::unordered_map<UvId, UvId> parent_;
  std::unordered_map<UvId, CornerId> cornerOf_;
};

}  // namespace

SewUvsResult sewUvs(Mesh& mesh, int uvSet, std::span<const EdgeId> edges,
                    const SewUvsOptions& options) {
  SewUvsResult result;
  if (mesh.uvSet(uvSet).cornerIds.empty()) return result;
  std::vector<EdgeId> wanted(edges.begin(), edges.end());
  mesh::sortUnique(wanted);
  std::erase_if(wanted, [&](EdgeId e) {
    const bool isSewable = isUvSewable(mesh, uvSet, e);
    const auto walks = mesh.adjacency().edgeCorners(e);
    if (!isSewable && walks.size() > 1 && mesh::isUvSeam(mesh, uvSet, e) &&
        std::ranges::none_of(walks, [&](CornerId c) { return mesh.cornerUv(uvSet, c) == kNone; }))
      ++result.unjoinable;
    return !isSewable || isUvClosed(mesh, uvSet, e);
  });
  result.open = result.unjoinable;
  if (wanted.empty()) return result;

  const Mesh before = mesh;
  SewPlan plan = startSewPlan(before, std::move(wanted));
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  Joining joining(before, uvSet, plan, options.moves, options.moves ? options.pieceFaceLimit : -1);
  for (const Index slot : joiningOrder(before, uvSet, plan)) {
    bool isRefused = false;
    if (joining.join(slot, set.points, isRefused)) plan.isClosed[at(slot)] = 1;
    if (isRefused) plan.isRefused[at(slot)] = 1;
  }
  closeWithinShells(before, uvSet, plan);
  Welding welding(before, uvSet);
  for (std::size_t slot = 0; slot < plan.edges.size(); ++slot)
    if (plan.isClosed[slot]) welding.weld(plan.edges[slot]);
  welding.write(set, [&](CornerId corner) {
    return options.moves ? joining.size(joining.shellOf(corner)) : Index{0};
  });
  std::vector<VertexId> ends;
  for (const EdgeId e : plan.edges) {
    pollCancel(e);
    ends.push_back(mesh.edge(e).a);
    ends.push_back(mesh.edge(e).b);
  }
  mesh::sortUnique(ends);
  partFans(mesh, uvSet, ends);
  for (std::size_t slot = 0; slot < plan.edges.size(); ++slot) {
    const bool isSewn = isUvClosed(mesh, uvSet, plan.edges[slot]);
    ++(isSewn ? result.sewn : result.open);
    result.limited += !isSewn && plan.isRefused[slot];
  }
  return result;
}

}  // namespace host::ops
