#include "shared/numeric/pointIndex.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr std::size_t kLeafSize = 8;

double squaredDistance(const double* a, const double* b) {
  const double x = a[0] - b[0], y = a[1] - b[1], z = a[2] - b[2];
  return x * x + y * y + z * z;
}
}  // namespace

pointIndex::pointIndex(const MPointArray& points, unsigned int start, unsigned int count) {
  tree.reserve(count);
  for (unsigned int i = 0; i < count; ++i) {
    const MPoint& p = points[start + i];
    if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
      tree.push_back({{p.x, p.y, p.z}, static_cast<int>(i)});
  }
  build(0, tree.size(), 0);
}

void pointIndex::build(std::size_t first, std::size_t last, int axis) {
  if (last - first <= kLeafSize) return;
  const std::size_t middle = first + (last - first) / 2;
  const auto at = [this](std::size_t i) { return tree.begin() + static_cast<std::ptrdiff_t>(i); };
  std::nth_element(at(first), at(middle), at(last), [axis](const entry& a, const entry& b) {
    return a.position[axis] < b.position[axis];
  });
  build(first, middle, (axis + 1) % 3);
  build(middle + 1, last, (axis + 1) % 3);
}

void pointIndex::find(search& state, std::size_t first, std::size_t last, int axis) const {
  const auto visit = [&state](const entry& candidate) {
    const double squared = squaredDistance(candidate.position, state.target);
    const bool isTie =
        squared == state.bestSquared && state.best >= 0 && candidate.place < state.best;
    if (squared < state.bestSquared || isTie) {
      state.bestSquared = squared;
      state.best = candidate.place;
    }
  };
  if (last - first <= kLeafSize) {
    for (std::size_t i = first; i < last; ++i) visit(tree[i]);
    return;
  }
  const std::size_t middle = first + (last - first) / 2;
  const double offset = state.target[axis] - tree[middle].position[axis];
  const int next = (axis + 1) % 3;
  if (offset < 0)
    find(state, first, middle, next);
  else
    find(state, middle + 1, last, next);
  visit(tree[middle]);
  if (offset * offset > state.bestSquared) return;
  if (offset < 0)
    find(state, middle + 1, last, next);
  else
    find(state, first, middle, next);
}

int pointIndex::nearest(const MPoint& point, double limit, double* distance) const {
  search state{{point.x, point.y, point.z}, limit * limit, -1};
  if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z)) return -1;
  find(state, 0, tree.size(), 0);
  if (distance && state.best >= 0) *distance = std::sqrt(state.bestSquared);
  return state.best;
}
