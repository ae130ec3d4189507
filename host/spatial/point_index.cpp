#include "host/spatial/point_index.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <thread>
#include <utility>

namespace host::spatial {

using math::Vec3;
using math::Vec3f;

namespace {

constexpr std::size_t kLeafSize = 8;
constexpr std::size_t kParallelItems = 100'000;

float coordinate(const Vec3f& p, int axis) {
  return axis == 0 ? p.x : axis == 1 ? p.y : p.z;
}

/// Where the items of a node are parted: the same for building and searching.
std::size_t middle(std::size_t begin, std::size_t end) {
  return begin + (end - begin) / 2;
}

}  // namespace

PointIndex::PointIndex(std::span<const Vec3f> points) {
  items_.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i)
    if (isFinite(Vec3(points[i]))) items_.push_back({points[i], static_cast<Index>(i)});
  while (items_.size() >> depth_ > kLeafSize) ++depth_;
  nodes_.resize((std::size_t{1} << depth_) - 1);
  build(0, 0, items_.size(), 0);
}

void PointIndex::build(std::size_t node, std::size_t begin, std::size_t end, int depth) {
  if (depth == depth_) return;
  float low[3] = {INFINITY, INFINITY, INFINITY}, high[3] = {-INFINITY, -INFINITY, -INFINITY};
  for (std::size_t i = begin; i < end; ++i)
    for (int axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], coordinate(items_[i].point, axis));
      high[axis] = std::max(high[axis], coordinate(items_[i].point, axis));
    }
  int axis = 0;
  for (int k : {1, 2})
    if (high[k] - low[k] > high[axis] - low[axis]) axis = k;
  const std::size_t mid = middle(begin, end);
  const auto first = items_.begin();
  const auto offset = [first](std::size_t i) { return first + static_cast<std::ptrdiff_t>(i); };
  std::nth_element(offset(begin), offset(mid), offset(end), [axis](const Item& a, const Item& b) {
    return coordinate(a.point, axis) < coordinate(b.point, axis);
  });
  nodes_[node] = {coordinate(items_[mid].point, axis), axis};
  const auto left = [=, this] { build(2 * node + 1, begin, mid, depth + 1); };
  if (end - begin > kParallelItems && (1u << depth) < std::thread::hardware_concurrency()) {
    std::thread other(left);
    build(2 * node + 2, mid, end, depth + 1);
    other.join();
  } else {
    left();
    build(2 * node + 2, mid, end, depth + 1);
  }
}

/// Visits (item, squared distance) of items that may be within reach, near ones first; `visit` may
/// shrink the reach.
template <class Visit>
void PointIndex::search(const Vec3& p, double& reachSquared, Visit&& visit) const {
  struct Pending {
    std::size_t node, begin, end;
    double away[3];  // how far p is outside the node's cell, by axis
    double squared;
  };
  if (items_.empty() || !isFinite(p)) return;
  std::array<Pending, 64> stack;
  std::size_t top = 0;
  stack[top++] = {0, 0, items_.size(), {0, 0, 0}, 0};
  while (top > 0) {
    Pending at = stack[--top];
    if (at.squared > reachSquared) continue;
    while (at.node < nodes_.size()) {
      const auto [split, axis] = nodes_[at.node];
      const double beyond = p[axis] - split;
      const std::size_t mid = middle(at.begin, at.end);
      Pending far = at;
      far.squared += beyond * beyond - at.away[axis] * at.away[axis];
      far.away[axis] = beyond;
      if (beyond < 0) {
        far.node = 2 * at.node + 2;
        far.begin = mid;
        at.node = 2 * at.node + 1;
        at.end = mid;
      } else {
        far.node = 2 * at.node + 1;
        far.end = mid;
        at.node = 2 * at.node + 2;
        at.begin = mid;
      }
      if (far.squared <= reachSquared) stack[top++] = far;
    }
    for (std::size_t i = at.begin; i < at.end; ++i) {
      const double squared = lengthSquared(Vec3(items_[i].point) - p);
      if (squared <= reachSquared) visit(items_[i], squared);
    }
  }
}

Index PointIndex::nearest(const Vec3& p, double maxDistance) const {
  double reach = maxDistance * maxDistance;
  Index best = kNone;
  search(p, reach, [&](const Item& item, double squared) {
    if (squared == reach && best != kNone && item.id > best) return;
    reach = squared;
    best = item.id;
  });
  return best;
}

std::vector<Index> PointIndex::within(const Vec3& p, double radius) const {
  std::vector<Index> ids;
  if (!(radius >= 0)) return ids;
  double reach = radius * radius;
  search(p, reach, [&ids](const Item& item, double) { ids.push_back(item.id); });
  std::ranges::sort(ids);
  return ids;
}

}  // namespace host::spatial
