#include "host/ops/uv/unfold_hierarchy.h"

#include <algorithm>

#include "host/base/cancel.h"
#include "host/base/parallel.h"

namespace host::ops::flat {
namespace {

constexpr std::size_t kMostTriangles = 24;  ///< a vertex with more of them stays
constexpr float kNever = 3e38f;

/// What taking a vertex out would cost, and where it would go.
struct Candidate {
  Index kept = kNone;
  float cost = kNever;
};

/// The surface while it loses vertices.
class Coarsening {
 public:
  Coarsening(Hierarchy& h, std::span<const math::Vec3> points)
      : h_(h), points_(points), of_(points.size()), state_(points.size(), 0), best_(points.size()) {
    std::vector<Index> sizes(points.size(), 0);
    for (const Triangle& t : h.triangles)
      for (const Index v : t) ++sizes[at(v)];
    for (std::size_t v = 0; v < points.size(); ++v) {
      of_[v].reserve(at(sizes[v]));
      h.isIn[v] = sizes[v] > 0;
      left_ += h.isIn[v];
    }
    for (std::size_t t = 0; t < h.triangles.size(); ++t)
      for (const Index v : h.triangles[t]) of_[at(v)].push_back(static_cast<Index>(t));
    for (std::size_t v = 0; v < points.size(); ++v)
      if (h.isIn[v]) live_.push_back(static_cast<Index>(v));
    countLoops();
  }

  [[nodiscard]] Index left() const { return left_; }

  /// Takes out a level; false when nothing could go.
  bool level() {
    std::erase_if(live_, [&](Index v) { return !h_.isIn[at(v)]; });
    parallelFor(live_.size(), 2048, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i)
        if (state_[at(live_[i])] != kKnown) best_[at(live_[i])] = evaluate(live_[i]);
    });
    std::vector<std::pair<float, Index>> order;
    order.reserve(live_.size());
    for (const Index v : live_) {
      state_[at(v)] = kKnown;
      if (best_[at(v)].kept != kNone) order.emplace_back(best_[at(v)].cost, v);
    }
    // The dearer half waits: its turn comes when the surface around it is coarser.
    const std::size_t half = (order.size() + 1) / 2;
    if (half < order.size())
      std::nth_element(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(half),
                       order.end());
    order.resize(half);
    std::sort(order.begin(), order.end());
    h_.levelStart.push_back(h_.collapses.size());
    for (const auto& [cost, v] : order)
      if (state_[at(v)] == kKnown && isLegal(v, best_[at(v)].kept)) collapse(v, best_[at(v)].kept);
    if (h_.collapses.size() > h_.levelStart.back()) return true;
    h_.levelStart.pop_back();
    return false;
  }

 private:
  static constexpr std::uint8_t kKnown = 1, kChanged = 2;

  void countLoops() {
    loopOf_.assign(points_.size(), kNone);
    for (std::size_t v = 0; v < points_.size(); ++v) {
      if (h_.border.next[v] == kNone || loopOf_[v] != kNone) continue;
      Index size = 0;
      for (Index w = static_cast<Index>(v); loopOf_[at(w)] == kNone; w = h_.border.next[at(w)]) {
        loopOf_[at(w)] = static_cast<Index>(loopSizes_.size());
        ++size;
      }
      loopSizes_.push_back(size);
    }
  }

  template <class Visit>
  void overTriangles(Index v, Visit visit) const {
    for (const Index t : of_[at(v)])
      if (h_.isAlive[at(t)]) visit(t);
  }
  [[nodiscard]] Index liveCount(Index v) const {
    Index count = 0;
    overTriangles(v, [&](Index) { ++count; });
    return count;
  }
  [[nodiscard]] bool areNeighbours(Index v, Index w) const {
    if (of_[at(v)].size() > of_[at(w)].size()) std::swap(v, w);
    bool found = false;
    overTriangles(
        v, [&](Index t) { found = found || std::ranges::count(h_.triangles[at(t)], w) > 0; });
    return found;
  }

  /// Whether sliding v into w keeps a manifold: their common neighbours are the tips of their
  /// common triangles, and no tip is left with too little.
  [[nodiscard]] bool isLegal(Index v, Index w) const {
    const bool isBorder = h_.border.has(v);
    if (isBorder && (loopSizes_[at(loopOf_[at(v)])] <= 3 ||
                     (h_.border.next[at(v)] != w && h_.border.previous[at(v)] != w)))
      return false;
    std::array<Index, 2 * kMostTriangles> ring;
    std::size_t ringSize = 0;
    std::array<Index, 2> tips{kNone, kNone};
    std::size_t tipCount = 0;
    bool isOdd = false;
    overTriangles(v, [&](Index t) {
      Index tip = kNone;
      bool hasKept = false;
      for (const Index n : h_.triangles[at(t)]) {
        if (n == w) hasKept = true;
        if (n == v || n == w) continue;
        tip = n;
        if (ringSize < ring.size() &&
            std::find(ring.begin(), ring.begin() + static_cast<std::ptrdiff_t>(ringSize), n) ==
                ring.begin() + static_cast<std::ptrdiff_t>(ringSize))
          ring[ringSize++] = n;
      }
      if (!hasKept) return;
      if (tipCount < 2)
        tips[tipCount] = tip;
      else
        isOdd = true;
      ++tipCount;
    });
    if (isOdd || tipCount != (isBorder ? 1u : 2u) || tips[0] == tips[1]) return false;
    for (std::size_t i = 0; i < ringSize; ++i)
      if (ring[i] != tips[0] && ring[i] != tips[1] && areNeighbours(ring[i], w)) return false;
    for (std::size_t i = 0; i < tipCount; ++i)
      if (liveCount(tips[i]) < (h_.border.has(tips[i]) ? 2 : 4)) return false;
    return true;
  }

  /// How bent and thin the new triangles around `w` would be, times the size of what goes.
  [[nodiscard]] float costOf(Index v, Index w) const {
    double worst = 0, size = 0;
    int survivors = 0;
    overTriangles(v, [&](Index t) {
      Triangle corners = h_.triangles[at(t)];
      std::array<math::Vec3, 3> p, q;
      bool hasKept = false;
      for (std::size_t k = 0; k < 3; ++k) {
        hasKept = hasKept || corners[k] == w;
        p[k] = points_[at(corners[k])];
        q[k] = corners[k] == v ? points_[at(w)] : p[k];
      }
      size += math::lengthSquared(p[1] - p[0]) + math::lengthSquared(p[2] - p[0]);
      if (hasKept) return;
      ++survivors;
      const math::Vec3 before = math::cross(p[1] - p[0], p[2] - p[0]);
      const math::Vec3 after = math::cross(q[1] - q[0], q[2] - q[0]);
      const double area = math::length(after), areaBefore = math::length(before);
      const double edges = math::lengthSquared(q[1] - q[0]) + math::lengthSquared(q[2] - q[0]) +
                           math::lengthSquared(q[2] - q[1]);
      const double thinness = edges / (3.4641 * area + 1e-9 * edges);
      const double bend = 1 - math::dot(before, after) / (area * areaBefore + 1e-300);
      worst = std::max(worst, thinness * (1 + 8 * bend));
    });
    if (survivors == 0) return kNever;
    return static_cast<float>(std::min(worst * size, 1e37));
  }

  [[nodiscard]] Candidate evaluate(Index v) const {
    Candidate best;
    if (of_[at(v)].size() > 4 * kMostTriangles) return best;
    if (at(liveCount(v)) > kMostTriangles) return best;
    const auto offer = [&](Index w) {
      if (const float cost = costOf(v, w); cost < best.cost || (cost == best.cost && w < best.kept))
        if (isLegal(v, w)) best = {w, cost};
    };
    if (h_.border.has(v)) {
      offer(h_.border.next[at(v)]);
      offer(h_.border.previous[at(v)]);
      return best;
    }
    std::array<Index, 2 * kMostTriangles> seen;
    std::size_t seenCount = 0;
    overTriangles(v, [&](Index t) {
      for (const Index n : h_.triangles[at(t)]) {
        const auto end = seen.begin() + static_cast<std::ptrdiff_t>(seenCount);
        if (n == v || std::find(seen.begin(), end, n) != end) continue;
        seen[seenCount++] = n;
        offer(n);
      }
    });
    return best;
  }

  void collapse(Index v, Index w) {
    Collapse c;
    c.removed = v;
    c.kept = w;
    c.firstTouched = static_cast<Index>(h_.touched.size());
    c.borderNext = h_.border.next[at(v)];
    c.borderPrevious = h_.border.previous[at(v)];
    std::vector<Index> vanished;
    overTriangles(v, [&](Index t) {
      Triangle& corners = h_.triangles[at(t)];
      for (const Index n : corners) state_[at(n)] = kChanged;
      if (std::ranges::count(corners, w) > 0) {
        vanished.push_back(t);
        return;
      }
      std::ranges::replace(corners, v, w);
      of_[at(w)].push_back(t);
      h_.touched.push_back(t);
    });
    c.survivorEnd = static_cast<Index>(h_.touched.size());
    for (const Index t : vanished) {
      h_.isAlive[at(t)] = 0;
      h_.touched.push_back(t);
    }
    c.touchedEnd = static_cast<Index>(h_.touched.size());
    if (c.borderNext != kNone) {
      h_.border.next[at(c.borderPrevious)] = c.borderNext;
      h_.border.previous[at(c.borderNext)] = c.borderPrevious;
      h_.border.next[at(v)] = h_.border.previous[at(v)] = kNone;
      --loopSizes_[at(loopOf_[at(v)])];
    }
    h_.isIn[at(v)] = 0;
    --left_;
    of_[at(v)] = {};
    h_.collapses.push_back(c);
  }

  Hierarchy& h_;
  std::span<const math::Vec3> points_;
  std::vector<std::vector<Index>> of_;  // triangles at a vertex, some of them gone
  std::vector<std::uint8_t> state_;
  std::vector<Candidate> best_;
  std::vector<Index> live_, loopOf_, loopSizes_;
  Index left_ = 0;
};

}  // namespace

void Hierarchy::undo(const Collapse& c) {
  for (Index i = c.firstTouched; i < c.survivorEnd; ++i)
    std::ranges::replace(triangles[at(touched[at(i)])], c.kept, c.removed);
  for (Index i = c.survivorEnd; i < c.touchedEnd; ++i) isAlive[at(touched[at(i)])] = 1;
  isIn[at(c.removed)] = 1;
  if (c.borderNext == kNone) return;
  border.next[at(c.removed)] = c.borderNext;
  border.previous[at(c.removed)] = c.borderPrevious;
  border.next[at(c.borderPrevious)] = c.removed;
  border.previous[at(c.borderNext)] = c.removed;
}

Hierarchy coarsen(std::span<const Triangle> triangles, std::span<const math::Vec3> points,
                  const Border& border, Index target) {
  Hierarchy h;
  h.triangles.assign(triangles.begin(), triangles.end());
  h.isAlive.assign(triangles.size(), 1);
  h.isIn.assign(points.size(), 0);
  h.border = border;
  Coarsening coarsening(h, points);
  while (coarsening.left() > target && !isCancelled() && coarsening.level()) {
  }
  return h;
}

}  // namespace host::ops::flat
