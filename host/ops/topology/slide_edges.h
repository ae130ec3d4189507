#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SlideEdgesOptions {
  enum class Direction { Left, Right, Normal };
  Direction direction = Direction::Left;
  double fraction = 0;      ///< of the way to the next edge; negative: to the other side
  bool isAbsolute = false;  ///< all vertices go equally far: the fraction of the shortest way
};

/// Moves edges along the edges that leave them on one side, or along the vertices' normals.
///
/// Joined edges have one left side: that of the lowest of them, walked from its first vertex to its
/// second. A vertex goes towards the mean of the edges that its faces there have on that side;
/// where the selection has none there it stays. Along normals the fraction is of the shortest edge
/// at each vertex. Topology and corner data stay. Linear in the mesh.
/// @return an error for a bad id or a fraction that is not finite, with `mesh` untouched.
[[nodiscard]] Result<void> slideEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                      const SlideEdgesOptions& options);

}  // namespace host::ops
