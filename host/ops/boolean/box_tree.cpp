#include "host/ops/boolean/box_tree.h"

#include <algorithm>
#include <numeric>

namespace host::ops {

BoxTree::BoxTree(std::vector<Index> items, std::span<const math::Box> boxes) {
  std::vector<Index> order(items.size());
  std::iota(order.begin(), order.end(), 0);
  if (!items.empty()) build(0, items.size(), boxes, order);
  items_.reserve(items.size());
  boxes_.reserve(items.size());
  for (const Index i : order) {
    items_.push_back(items[at(i)]);
    boxes_.push_back(boxes[at(i)]);
  }
}

void BoxTree::build(std::size_t first, std::size_t end, std::span<const math::Box> boxes,
                    std::vector<Index>& order) {
  constexpr std::size_t kLeaf = 4;
  const std::size_t self = nodes_.size();
  nodes_.emplace_back();
  math::Box box, middles;
  for (std::size_t i = first; i < end; ++i) {
    box.add(boxes[at(order[i])]);
    middles.add(boxes[at(order[i])].center());
  }
  nodes_[self].box = box;
  if (end - first <= kLeaf) {
    nodes_[self].first = static_cast<Index>(first);
    nodes_[self].count = static_cast<Index>(end - first);
    return;
  }
  const math::Vec3 size = middles.size();
  const int axis = size.x >= size.y && size.x >= size.z ? 0 : size.y >= size.z ? 1 : 2;
  const std::size_t middle = (first + end) / 2;
  const auto begin = order.begin();
  using Step = std::vector<Index>::difference_type;
  std::nth_element(begin + static_cast<Step>(first), begin + static_cast<Step>(middle),
                   begin + static_cast<Step>(end), [&](Index a, Index b) {
                     const double p = boxes[at(a)].min[axis] + boxes[at(a)].max[axis],
                                  q = boxes[at(b)].min[axis] + boxes[at(b)].max[axis];
                     return p != q ? p < q : a < b;
                   });
  build(first, middle, boxes, order);
  nodes_[self].first = static_cast<Index>(nodes_.size());
  build(middle, end, boxes, order);
}

}  // namespace host::ops
