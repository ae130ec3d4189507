#pragma once

#include <span>
#include <vector>

#include "host/math/box.h"
#include "host/math/plane.h"
#include "host/mesh/mesh.h"

namespace host::spatial {

/// Planes whose negative sides bound a convex region, in object space.
using PickRegion = std::vector<math::Plane>;

/// A tree of boxes over the faces of one mesh, for what lies in a thin pyramid under the cursor.
/// Faces are sorted along a Morton curve (Lauterbach et al. 2009) into a complete binary tree, so
/// that moved points need only new boxes. Sorting on construction, linear to refit; a question
/// costs about the logarithm plus what it finds.
class PickTree {
 public:
  explicit PickTree(const mesh::Mesh& mesh);

  /// Takes new points for the same faces.
  void refit(const mesh::Mesh& mesh);

  /// Appends the faces whose boxes reach into the region.
  void collect(const PickRegion& region, std::vector<FaceId>& faces) const;

 private:
  void sortFaces(const mesh::Mesh& mesh);
  [[nodiscard]] bool isLeaf(std::size_t node) const { return node + 1 >= leafCount_; }
  [[nodiscard]] std::span<const FaceId> facesOf(std::size_t leafNode) const;

  std::vector<FaceId> order_;
  std::vector<math::Box> boxes_;  ///< heap order: the children of i are 2i + 1 and 2i + 2
  std::size_t leafCount_ = 0;     ///< a power of two
};

}  // namespace host::spatial
