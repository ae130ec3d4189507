#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SpinEdgesResult {
  Index spun = 0;  ///< edges that turned; the others have no two faces, or would stand twice
};

/// Turns edges within the two faces that they part: both ends go `offset` corners on around the
/// outline of the two (against the outline when it is negative).
///
/// Edges are turned in the order given, each in the mesh as the ones before left it. All ids stay;
/// the corners that an end comes to take the UVs, colours and normals that lie there. Between two
/// triangles an offset of 1 is the flip of a diagonal. A turned edge that would join vertices that
/// are joined already stays.
/// @return an error for a bad id, with `mesh` untouched
[[nodiscard]] Result<SpinEdgesResult> spinEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                int offset);

}  // namespace host::ops
