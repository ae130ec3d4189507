#include "host/ops/topology/triangle_patch.h"

#include <algorithm>

namespace host::ops {

namespace {

/// Cosines below which triangles count as turned, and edges as bent.
constexpr double kTurned = 0.3, kFlat = 0.9, kStraight = 0.985;

bool contains(const std::vector<Index>& list, Index item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

Index TrianglePatch::addVertex(const math::Vec3& point) {
  points_.push_back(point);
  around_.emplace_back();
  fixed_.emplace_back();
  return vertexCount() - 1;
}

void TrianglePatch::addTriangle(const Triangle& corners) {
  const auto index = static_cast<Index>(triangles_.size());
  triangles_.push_back(corners);
  for (const Index v : corners) around_[at(v)].push_back(index);
  ++alive_;
}

void TrianglePatch::fixEdge(Index a, Index b) {
  if (isFixed(a, b)) return;
  fixed_[at(a)].push_back(b);
  fixed_[at(b)].push_back(a);
}

void TrianglePatch::unfix(Index a, Index b) {
  std::erase(fixed_[at(a)], b);
  std::erase(fixed_[at(b)], a);
}

bool TrianglePatch::isFixed(Index a, Index b) const {
  return contains(fixed_[at(a)], b);
}

std::vector<TrianglePatch::Triangle> TrianglePatch::triangles() const {
  std::vector<Triangle> left;
  for (const Triangle& t : triangles_)
    if (t[0] != kNone) left.push_back(t);
  return left;
}

std::vector<std::array<Index, 2>> TrianglePatch::edges() const {
  std::vector<std::array<Index, 2>> all;
  for (const Triangle& t : triangles_)
    for (std::size_t i = 0; i < 3 && t[0] != kNone; ++i)
      all.push_back({std::min(t[i], t[(i + 1) % 3]), std::max(t[i], t[(i + 1) % 3])});
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::vector<Index> TrianglePatch::neighbours(Index v) const {
  std::vector<Index> found;
  for (const Index t : around_[at(v)])
    for (const Index other : triangles_[at(t)])
      if (other != v && !contains(found, other)) found.push_back(other);
  return found;
}

bool TrianglePatch::areJoined(Index a, Index b) const {
  return !trianglesAt(a, b).empty();
}

std::vector<Index> TrianglePatch::trianglesAt(Index a, Index b) const {
  std::vector<Index> found;
  for (const Index t : around_[at(a)]) {
    const Triangle& corners = triangles_[at(t)];
    if (std::find(corners.begin(), corners.end(), b) != corners.end()) found.push_back(t);
  }
  return found;
}

Index TrianglePatch::opposite(Index triangle, Index a, Index b) const {
  for (const Index v : triangles_[at(triangle)])
    if (v != a && v != b) return v;
  return kNone;
}

math::Vec3 TrianglePatch::normalOf(const Triangle& t) const {
  return cross(point(t[1]) - point(t[0]), point(t[2]) - point(t[0]));
}

math::Vec3 TrianglePatch::normalAt(Index v) const {
  math::Vec3 sum;
  for (const Index t : around_[at(v)]) sum += normalOf(triangles_[at(t)]);
  return sum;
}

void TrianglePatch::replace(Index triangle, Index from, Index into) {
  std::replace(triangles_[at(triangle)].begin(), triangles_[at(triangle)].end(), from, into);
  detach(triangle, from);
  around_[at(into)].push_back(triangle);
}

void TrianglePatch::detach(Index triangle, Index v) {
  std::erase(around_[at(v)], triangle);
}

Index TrianglePatch::split(Index a, Index b) {
  const Index middle = addVertex((point(a) + point(b)) * 0.5);
  for (const Index t : trianglesAt(a, b)) {
    Triangle half = triangles_[at(t)];
    std::replace(half.begin(), half.end(), a, middle);
    replace(t, b, middle);
    addTriangle(half);
  }
  if (isFixed(a, b)) {
    unfix(a, b);
    fixEdge(a, middle);
    fixEdge(middle, b);
  }
  return middle;
}

/// A vertex at fixed edges only goes along a straight run of two of them.
bool TrianglePatch::keepsFixedEdges(Index from, Index into) const {
  const std::vector<Index>& ends = fixed_[at(from)];
  if (ends.empty()) return true;
  if (ends.size() != 2 || !isFixed(from, into)) return false;
  const Index other = ends[0] == into ? ends[1] : ends[0];
  if (isFixed(other, into)) return false;
  const math::Vec3 there = point(into) - point(from), back = point(from) - point(other);
  return dot(there, back) >= kStraight * length(there) * length(back);
}

bool TrianglePatch::collapse(Index from, Index into, double longest) {
  if (!keepsFixedEdges(from, into)) return false;
  const std::vector<Index> shared = trianglesAt(from, into);
  if (shared.empty() || shared.size() > 2) return false;
  const std::vector<Index> ring = neighbours(from), otherRing = neighbours(into);
  // Only the corners beside the edge are joined to both (Dey and others 1999).
  std::size_t common = 0;
  for (const Index v : ring) common += contains(otherRing, v) ? 1 : 0;
  if (common != shared.size()) return false;
  for (const Index t : shared) {
    const Index third = opposite(t, from, into);
    if (around_[at(third)].size() <= 3 && fixed_[at(third)].empty()) return false;
    // What was a fixed edge of the one that goes would double another one.
    if (isFixed(from, third)) return false;
  }
  for (const Index v : ring)
    if (v != into && lengthOf(v, into) > longest) return false;
  for (const Index t : around_[at(from)]) {
    if (contains(shared, t)) continue;
    Triangle after = triangles_[at(t)];
    const math::Vec3 before = normalOf(after);
    std::replace(after.begin(), after.end(), from, into);
    const math::Vec3 turned = normalOf(after);
    if (dot(before, turned) <= kTurned * length(before) * length(turned)) return false;
  }
  const std::vector<Index> ends = fixed_[at(from)];
  for (const Index end : ends) {
    unfix(from, end);
    if (end != into) fixEdge(end, into);
  }
  for (const Index t : shared) {
    const Triangle gone = triangles_[at(t)];
    for (const Index v : gone) detach(t, v);
    triangles_[at(t)] = {kNone, kNone, kNone};
    --alive_;
  }
  const std::vector<Index> rest = around_[at(from)];
  for (const Index t : rest) replace(t, from, into);
  return true;
}

std::vector<Index> TrianglePatch::beside(Index a, Index b) const {
  std::vector<Index> found;
  for (const Index t : trianglesAt(a, b)) found.push_back(opposite(t, a, b));
  return found;
}

bool TrianglePatch::flip(Index a, Index b, double longest) {
  if (isFixed(a, b)) return false;
  const std::vector<Index> shared = trianglesAt(a, b);
  if (shared.size() != 2) return false;
  const Index c = opposite(shared[0], a, b), d = opposite(shared[1], a, b);
  if (c == d || areJoined(c, d) || lengthOf(c, d) > longest) return false;
  const auto excess = [&](Index v, int change) {
    // Around a vertex of the border there is one triangle less than there are neighbours.
    const bool isBorder = !fixed_[at(v)].empty() && neighbours(v).size() != around_[at(v)].size();
    const int wanted = isBorder ? 3 : 6;
    const int off = static_cast<int>(around_[at(v)].size()) + change - wanted;
    return off * off;
  };
  const int before = excess(a, 0) + excess(b, 0) + excess(c, 0) + excess(d, 0),
            after = excess(a, -1) + excess(b, -1) + excess(c, 1) + excess(d, 1);
  if (after >= before) return false;
  Triangle one = triangles_[at(shared[0])], two = triangles_[at(shared[1])];
  const math::Vec3 n = normalOf(one), m = normalOf(two);
  if (dot(n, m) < kFlat * length(n) * length(m)) return false;
  std::replace(one.begin(), one.end(), a, d);
  std::replace(two.begin(), two.end(), b, c);
  const math::Vec3 n2 = normalOf(one), m2 = normalOf(two), mean = n + m;
  const double size = length(mean);
  if (dot(n2, mean) <= kTurned * length(n2) * size || dot(m2, mean) <= kTurned * length(m2) * size)
    return false;
  replace(shared[0], a, d);
  replace(shared[1], b, c);
  return true;
}

}  // namespace host::ops
