#pragma once

#include <vector>

class MIntArray;

/// The corners around every vertex of a mesh, numbered through all faces. Linear to make.
struct vertexCorners {
  vertexCorners(const MIntArray& counts, const MIntArray& connects, unsigned int vertexCount);

  /// The place in `corners` of a vertex's first corner.
  unsigned int first(int vertex) const { return firsts[static_cast<std::size_t>(vertex)]; }

  std::vector<unsigned int> firsts;  ///< one a vertex, and the end
  std::vector<unsigned int> corners;
  std::vector<int> faces;  ///< one a corner
};
