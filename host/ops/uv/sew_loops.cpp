#include <algorithm>
#include <array>
#include <unordered_set>

#include "host/mesh/adjacency.h"
#include "host/ops/uv/sew_plan.h"
#include "host/ops/uv/shell_growth.h"

namespace host::ops {

namespace {

using mesh::Adjacency;
using mesh::Mesh;

/// One side of an edge that may be closed, met on the way along a border.
struct Side {
  Index slot = kNone;
  Index other = kNone;  ///< where on the border the other side is; -1: on another border
};

/// A border of a shell as one walks along it.
struct Border {
  std::vector<Side> sides;
  Index stayingSides = 0;      ///< of edges that are not to be closed whatever happens
  EdgeId staying = kNone;      ///< one of these edges
  bool isManyStaying = false;  ///< there are others
  FaceId face = kNone;         ///< one that lies on it
};

/// A number that stands for a slot, as good as random and always the same.
std::uint64_t tag(Index slot) {
  std::uint64_t x = static_cast<std::uint64_t>(slot) + 0x9E3779B97F4A7C15u;
  x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
  x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
  return x ^ (x >> 31);
}

class Closer {
 public:
  Closer(const Mesh& mesh, int uvSet, SewPlan& plan)
      : mesh_(mesh), adjacency_(mesh.adjacency()), uvSet_(uvSet), plan_(plan) {}

  void run() {
    walkBorders();
    std::vector<std::vector<Index>> closable;
    for (const Border& border : borders_) closable.push_back(uncrossed(border));
    // What can never close is known before a shell is asked whether it keeps a border.
    for (std::size_t b = 0; b < borders_.size(); ++b)
      if (!vanishes(borders_[b], closable[b])) markStaying(borders_[b], closable[b]);
    for (std::size_t b = 0; b < borders_.size(); ++b) {
      if (vanishes(borders_[b], closable[b]) && !keepsOtherBorder(borders_[b]))
        keepLongestWay(borders_[b], closable[b]);
    }
    for (const std::vector<Index>& slots : closable)
      for (const Index slot : slots) plan_.isClosed[at(slot)] = 1;
  }

 private:
  [[nodiscard]] bool isShut(EdgeId e) const {
    const Index slot = plan_.slotOfEdge[at(e)];
    return slot != kNone ? plan_.isClosed[at(slot)] != 0 : isUvClosed(mesh_, uvSet_, e);
  }
  /// The side that follows along the border: around the end of this one, across what is shut.
  [[nodiscard]] CornerId next(CornerId side) const {
    CornerId c = adjacency_.nextCorner(side);
    while (isShut(mesh_.cornerEdge(c))) c = adjacency_.nextCorner(adjacency_.twin(c));
    return c;
  }

  void walkBorders() {
    const std::size_t count = plan_.edges.size();
    std::vector<std::array<Index, 2>> borderOf(count, {kNone, kNone}), placeOf(count, {0, 0});
    for (std::size_t slot = 0; slot < count; ++slot) {
      const auto walks = adjacency_.edgeCorners(plan_.edges[slot]);
      for (std::size_t side = 0; side < 2; ++side) {
        if (plan_.isClosed[slot] || borderOf[slot][side] != kNone) continue;
        const auto number = static_cast<Index>(borders_.size());
        Border border;
        border.face = adjacency_.cornerFace(walks[side]);
        CornerId c = walks[side];
        do {
          const Index met = plan_.slotOfEdge[at(mesh_.cornerEdge(c))];
          if (met == kNone || plan_.isRefused[at(met)]) {
            ++border.stayingSides;
            border.isManyStaying = border.isManyStaying || (border.staying != kNone &&
                                                            border.staying != mesh_.cornerEdge(c));
            border.staying = mesh_.cornerEdge(c);
          }
          if (met != kNone) {
            const auto own = adjacency_.edgeCorners(plan_.edges[at(met)])[0] == c ? 0u : 1u;
            borderOf[at(met)][own] = number;
            placeOf[at(met)][own] = static_cast<Index>(border.sides.size());
            border.sides.push_back({met, kNone});
          }
          c = next(c);
        } while (c != walks[side]);
        borders_.push_back(std::move(border));
      }
    }
    for (std::size_t slot = 0; slot < count; ++slot) {
      if (plan_.isClosed[slot] || plan_.isRefused[slot]) continue;
      if (borderOf[slot][0] != borderOf[slot][1]) continue;
      std::vector<Side>& sides = borders_[at(borderOf[slot][0])].sides;
      sides[at(placeOf[slot][0])].other = placeOf[slot][1];
      sides[at(placeOf[slot][1])].other = placeOf[slot][0];
    }
  }

  /// The slots whose two sides no other pair of the border stands between and outside of.
  static std::vector<Index> uncrossed(const Border& border) {
    std::vector<std::uint64_t> sum(border.sides.size() + 1, 0);
    for (std::size_t i = 0; i < border.sides.size(); ++i)
      sum[i + 1] = sum[i] ^ (border.sides[i].other == kNone ? 0 : tag(border.sides[i].slot));
    std::vector<Index> slots;
    for (std::size_t i = 0; i < border.sides.size(); ++i) {
      const Index other = border.sides[i].other;
      if (other == kNone || at(other) < i) continue;
      if ((sum[at(other)] ^ sum[i + 1]) == 0) slots.push_back(border.sides[i].slot);
    }
    return slots;
  }

  /// Whether nothing would be left of a border but, at most, both sides of one edge, whose UVs
  /// then are the same.
  static bool vanishes(const Border& border, const std::vector<Index>& closable) {
    const bool isNothingElse =
        border.stayingSides == 0 || (border.stayingSides == 2 && !border.isManyStaying);
    return isNothingElse && closable.size() * 2 == border.sides.size();
  }

  /// Notes the edges of a border that stay open.
  void markStaying(const Border& border, const std::vector<Index>& closable) {
    if (staying_.empty()) staying_.assign(plan_.edges.size(), 0);
    for (const Side& side : border.sides) staying_[at(side.slot)] = 1;
    for (const Index slot : closable) staying_[at(slot)] = 0;
  }

  /// Whether the shell has a border that stays, on this walk or on another.
  bool keepsOtherBorder(const Border& border) {
    std::unordered_set<FaceId> met{border.face};
    std::vector<FaceId> queue{border.face};
    FaceId lowest = border.face;
    for (std::size_t i = 0; i < queue.size(); ++i)
      for (const EdgeId e : mesh_.faceEdges(queue[i])) {
        if (isShut(e)) {
          for (const FaceId other : adjacency_.edgeFaces(e))
            if (met.insert(other).second) {
              queue.push_back(other);
              lowest = std::min(lowest, other);
            }
          continue;
        }
        const Index slot = plan_.slotOfEdge[at(e)];
        if (e == border.staying) continue;
        if (slot == kNone || plan_.isRefused[at(slot)] || (!staying_.empty() && staying_[at(slot)]))
          return true;
      }
    return !guarded_.insert(lowest).second;
  }

  /// The edges of a border that would vanish make a tree, and the border goes around it; takes the
  /// edges of the tree's longest way out of what is to be closed.
  void keepLongestWay(const Border& border, std::vector<Index>& closable) {
    struct Node {
      Index parent = kNone, slot = kNone;
      double reach = 0;   ///< to the farthest leaf below
      Index via = kNone;  ///< the child on that way
    };
    std::vector<Node> nodes(1);
    std::vector<Index> visit;  // nodes in order of leaving
    Index now = 0;
    for (std::size_t i = 0; i < border.sides.size(); ++i) {
      if (at(border.sides[i].other) > i) {
        nodes.push_back({now, border.sides[i].slot, 0, kNone});
        now = static_cast<Index>(nodes.size()) - 1;
      } else {
        visit.push_back(now);
        now = nodes[at(now)].parent;
      }
    }
    double longest = -1;
    Index left = kNone, right = kNone;
    const auto consider = [&](Index node, Index second, double length) {
      if (length <= longest) return;
      longest = length;
      left = nodes[at(node)].via;
      right = second;
    };
    for (const Index node : visit) {
      const Index parent = nodes[at(node)].parent;
      const double reach = nodes[at(node)].reach + lengthOf(nodes[at(node)].slot);
      consider(parent, node, nodes[at(parent)].reach + reach);
      if (nodes[at(parent)].via == kNone || reach > nodes[at(parent)].reach) {
        nodes[at(parent)].reach = reach;
        nodes[at(parent)].via = node;
      }
    }
    std::unordered_set<Index> kept;
    // `via` of the nodes below the top is final once the top was considered: they were left before.
    for (Index node : {left, right})
      for (; node != kNone; node = nodes[at(node)].via) kept.insert(nodes[at(node)].slot);
    std::erase_if(closable, [&](Index slot) { return kept.contains(slot); });
  }
  [[nodiscard]] double lengthOf(Index slot) const {
    const mesh::EdgeVertices ends = mesh_.edge(plan_.edges[at(slot)]);
    return math::distance(mesh_.point(ends.a), mesh_.point(ends.b));
  }

  const Mesh& mesh_;
  const Adjacency& adjacency_;
  int uvSet_;
  SewPlan& plan_;
  std::vector<Border> borders_;
  std::vector<std::uint8_t> staying_;
  std::unordered_set<FaceId> guarded_;  // shells that keep a way, by their lowest face
};

}  // namespace

void closeWithinShells(const Mesh& mesh, int uvSet, SewPlan& plan) {
  Closer(mesh, uvSet, plan).run();
}

}  // namespace host::ops
