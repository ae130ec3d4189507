#pragma once

#include <cmath>
#include <span>
#include <vector>

#include "host/base/ids.h"
#include "host/math/box.h"

namespace host::ops {

/// A tree of boxes that finds those which touch a box or a ray. Building is n log n.
class BoxTree {
 public:
  BoxTree() = default;
  /// @param items what is found; @param boxes theirs, one each
  BoxTree(std::vector<Index> items, std::span<const math::Box> boxes);

  /// Visits the items whose boxes touch the box.
  template <class Visit>
  void forEachAt(const math::Box& box, Visit visit) const {
    walk([&](const math::Box& other) { return box.intersects(other); }, visit);
  }
  /// Visits the items whose boxes, grown by `margin`, the ray meets.
  template <class Visit>
  void forEachOnRay(const math::Vec3& origin, const math::Vec3& direction, double margin,
                    Visit visit) const {
    walk(
        [&](const math::Box& box) {
          double from = 0, to = math::Box::kInfinity;
          for (int i = 0; i < 3; ++i) {
            const double a = (box.min[i] - margin - origin[i]) / direction[i],
                         b = (box.max[i] + margin - origin[i]) / direction[i];
            from = std::fmax(from, std::fmin(a, b));
            to = std::fmin(to, std::fmax(a, b));
          }
          return from <= to;
        },
        visit);
  }

 private:
  struct Node {
    math::Box box;
    Index first = 0, count = 0;  ///< items of a leaf; of other nodes, `first` is the second child
  };
  void build(std::size_t first, std::size_t end, std::span<const math::Box> boxes,
             std::vector<Index>& order);
  template <class Touches, class Visit>
  void walk(Touches touches, Visit& visit) const {
    Index waiting[64];
    int count = 0;
    if (!nodes_.empty()) waiting[count++] = 0;
    while (count > 0) {
      const Index index = waiting[--count];
      const Node& node = nodes_[at(index)];
      if (!touches(node.box)) continue;
      if (node.count > 0) {
        for (Index i = node.first; i < node.first + node.count; ++i)
          if (touches(boxes_[at(i)])) visit(items_[at(i)]);
      } else {
        waiting[count++] = node.first;
        waiting[count++] = index + 1;
      }
    }
  }

  std::vector<Node> nodes_;
  std::vector<Index> items_;
  std::vector<math::Box> boxes_;
};

}  // namespace host::ops
