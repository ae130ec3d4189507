#pragma once

#include <span>
#include <vector>

#include "host/base/ids.h"
#include "host/math/box.h"
#include "host/math/vec.h"
#include "host/spatial/triangle.h"

namespace host::spatial {

/// A bounding volume hierarchy over triangles for distance and overlap questions; built by binned
/// surface area heuristic (Wald 2007). Boxes are floats, which hold the float points exactly;
/// distances are computed in double.
class TriangleBvh {
 public:
  /// @param triangles kept by reference; those with points that are not finite are left out
  explicit TriangleBvh(std::span<const Triangle> triangles);

  struct Nearest {
    Index triangle = kNone;
    double u = 0, v = 0;
    math::Vec3 point;
    double squared = 0;
  };
  /// The triangle nearest to `p` within the squared distance, the lowest of equally near ones;
  /// kNone when there is none.
  [[nodiscard]] Nearest nearest(const math::Vec3& p, double maxSquared) const;

  [[nodiscard]] std::size_t bytes() const {
    return nodes_.size() * sizeof(Node) + items_.size() * sizeof(Index);
  }

 private:
  struct Node {
    float min[3];
    Index first;  // leaf: first item; else: first of two neighbouring children
    float max[3];
    Index count;  // 0: not a leaf
  };
  struct Reference;
  class Builder;
  [[nodiscard]] static double squaredDistance(const Node& node, const math::Vec3& p);

  std::vector<Node> nodes_;
  std::vector<Index> items_;  // triangles, leaf by leaf
  std::span<const Triangle> triangles_;
};

}  // namespace host::spatial
