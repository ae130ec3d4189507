#include "host/ops/boolean/piece_loops.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

namespace {

using Loop = std::vector<PointId>;
using Triangle = std::array<PointId, 3>;

std::uint64_t walkKey(PointId from, PointId to) {
  return (std::uint64_t{static_cast<std::uint32_t>(from)} << 32U) | static_cast<std::uint32_t>(to);
}

/// Which triangle walks from one point to another.
using Walks = std::unordered_map<std::uint64_t, Index>;

/// The border of connected triangles when that is one loop that meets no point twice; else nothing.
Loop singleBorder(const std::vector<Triangle>& triangles, const Walks& walks) {
  std::map<PointId, PointId> next;
  for (const Triangle& t : triangles)
    for (std::size_t i = 0; i < 3; ++i) {
      const PointId a = t[i], b = t[(i + 1) % 3];
      if (walks.contains(walkKey(b, a))) continue;
      if (!next.emplace(a, b).second) return {};
    }
  Loop loop;
  const PointId start = next.begin()->first;
  for (PointId p = start; loop.empty() || p != start; p = next.at(p)) {
    loop.push_back(p);
    if (!next.contains(p)) return {};
  }
  return loop.size() == next.size() ? loop : Loop{};
}

/// Joins two loops along the chain that they share, which holds the edge from a to b of the first
/// one. Nothing when they meet anywhere else.
Loop joinLoops(const Loop& one, const Loop& two, PointId a, PointId b) {
  const std::size_t n = one.size(), m = two.size();
  const auto indexOf = [](const Loop& loop, PointId p) {
    return static_cast<std::size_t>(std::find(loop.begin(), loop.end(), p) - loop.begin());
  };
  // `one` runs forwards over the chain, `two` backwards.
  std::size_t end = indexOf(one, b), otherEnd = indexOf(two, b);
  std::size_t begin = indexOf(one, a), otherBegin = indexOf(two, a);
  std::size_t shared = 2;
  const auto grow = [&](std::size_t& i, std::size_t& j, bool forwards) {
    while (shared < n && shared < m) {
      const std::size_t i2 = forwards ? (i + 1) % n : (i + n - 1) % n,
                        j2 = forwards ? (j + m - 1) % m : (j + 1) % m;
      if (one[i2] != two[j2]) return;
      i = i2;
      j = j2;
      ++shared;
    }
  };
  grow(end, otherEnd, true);
  grow(begin, otherBegin, false);
  Loop joined;
  for (std::size_t i = end; i != begin; i = (i + 1) % n) joined.push_back(one[i]);
  for (std::size_t j = otherBegin; j != otherEnd; j = (j + 1) % m) joined.push_back(two[j]);
  if (joined.size() < 3) return {};
  Loop sorted = joined;
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return {};
  return joined;
}

/// The points of a border that lie on a straight run of it: nothing needs them but a dividing edge.
std::unordered_set<PointId> straightPoints(const ExactPoints& points,
                                           const std::vector<Triangle>& triangles,
                                           const Walks& walks) {
  std::unordered_map<PointId, PointId> next, previous;
  for (const Triangle& t : triangles)
    for (std::size_t i = 0; i < 3; ++i) {
      const PointId a = t[i], b = t[(i + 1) % 3];
      if (walks.contains(walkKey(b, a))) continue;
      next[a] = b;
      previous[b] = a;
    }
  std::unordered_set<PointId> found;
  for (const auto& [p, after] : next) {
    const auto before = previous.find(p);
    if (before == previous.end()) continue;
    const math::Vec3 in = points.near(p) - points.near(before->second),
                     out = points.near(after) - points.near(p);
    if (dot(in, out) > 0 && length(cross(in, out)) < 1e-6 * length(in) * length(out))
      found.insert(p);
  }
  return found;
}

/// Joins connected triangles around holes, over edges to points on straight runs first and then
/// over the longest.
void joinStepwise(const ExactPoints& points, const std::vector<Triangle>& triangles,
                  const Walks& walks, std::vector<Loop>& result) {
  struct Edge {
    PointId a, b;
    bool endsOnStraight;
    double length;
  };
  const std::unordered_set<PointId> straight = straightPoints(points, triangles, walks);
  std::vector<Edge> edges;
  std::unordered_map<std::uint64_t, Index> local;
  std::vector<Loop> loops;
  for (const Triangle& t : triangles) {
    const auto index = static_cast<Index>(loops.size());
    loops.emplace_back(t.begin(), t.end());
    for (std::size_t i = 0; i < 3; ++i) {
      const PointId a = t[i], b = t[(i + 1) % 3];
      local[walkKey(a, b)] = index;
      if (a < b && walks.contains(walkKey(b, a)))
        edges.push_back({a, b, straight.contains(a) || straight.contains(b),
                         math::length(points.near(a) - points.near(b))});
    }
  }
  std::sort(edges.begin(), edges.end(), [](const Edge& x, const Edge& y) {
    return std::tuple(!x.endsOnStraight, -x.length, x.a, x.b) <
           std::tuple(!y.endsOnStraight, -y.length, y.a, y.b);
  });
  JoinedSets sets(loops.size());
  for (bool changed = true; changed;) {
    changed = false;
    std::erase_if(edges, [&](const Edge& edge) {
      const auto there = local.find(walkKey(edge.a, edge.b)),
                 back = local.find(walkKey(edge.b, edge.a));
      if (there == local.end() || back == local.end()) return true;
      const Index one = sets.lowest(there->second), two = sets.lowest(back->second);
      if (one == two) return true;
      Loop joined = joinLoops(loops[at(one)], loops[at(two)], edge.a, edge.b);
      if (joined.empty()) return false;
      sets.join(one, two);
      loops[at(std::max(one, two))].clear();
      loops[at(std::min(one, two))] = std::move(joined);
      changed = true;
      return true;
    });
  }
  for (Loop& loop : loops)
    if (!loop.empty()) result.push_back(std::move(loop));
}

}  // namespace

std::vector<Loop> joinPieces(const ExactPoints& points, const std::vector<Triangle>& triangles) {
  Walks walks;
  for (std::size_t t = 0; t < triangles.size(); ++t)
    for (std::size_t i = 0; i < 3; ++i)
      walks[walkKey(triangles[t][i], triangles[t][(i + 1) % 3])] = static_cast<Index>(t);
  JoinedSets sets(triangles.size());
  for (std::size_t t = 0; t < triangles.size(); ++t)
    for (std::size_t i = 0; i < 3; ++i)
      if (const auto back = walks.find(walkKey(triangles[t][(i + 1) % 3], triangles[t][i]));
          back != walks.end())
        sets.join(static_cast<Index>(t), back->second);
  std::map<Index, std::vector<Triangle>> parts;
  for (std::size_t t = 0; t < triangles.size(); ++t)
    parts[sets.lowest(static_cast<Index>(t))].push_back(triangles[t]);
  std::vector<Loop> loops;
  for (const auto& [first, part] : parts) {
    Loop loop = singleBorder(part, walks);
    if (loop.empty())
      joinStepwise(points, part, walks, loops);
    else
      loops.push_back(std::move(loop));
  }
  return loops;
}

}  // namespace host::ops
