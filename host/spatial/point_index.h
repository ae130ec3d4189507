#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "host/base/ids.h"
#include "host/math/vec.h"

namespace host::spatial {

/// Finds points near a place: a kd-tree over a copy of the points. Points that are not finite are
/// left out.
///
/// O(n log n) to build, in parallel; 16 bytes a point and a little. Questions may be asked from
/// several threads.
class PointIndex {
 public:
  static constexpr double kFar = std::numeric_limits<double>::infinity();

  explicit PointIndex(std::span<const math::Vec3f> points);

  /// The point nearest to `p` within `maxDistance` (inclusive), -1 when there is none. Of equally
  /// near ones the lowest.
  [[nodiscard]] Index nearest(const math::Vec3& p, double maxDistance = kFar) const;
  /// All points within `radius` (inclusive), sorted by id.
  [[nodiscard]] std::vector<Index> within(const math::Vec3& p, double radius) const;

  [[nodiscard]] Index size() const { return static_cast<Index>(items_.size()); }
  [[nodiscard]] std::size_t bytes() const {
    return items_.size() * sizeof(Item) + nodes_.size() * sizeof(Node);
  }

 private:
  struct Item {
    math::Vec3f point;
    Index id;
  };
  struct Node {  // node i has children 2i+1 and 2i+2; the tree is complete, so that no links are
                 // needed
    float split;
    std::int32_t axis;
  };
  void build(std::size_t node, std::size_t begin, std::size_t end, int depth);
  template <class Visit>
  void search(const math::Vec3& p, double& reachSquared, Visit&& visit) const;

  std::vector<Item> items_;
  std::vector<Node> nodes_;
  int depth_ = 0;  // of the leaves
};

}  // namespace host::spatial
