#pragma once

#include <span>

#include "host/mesh/mesh.h"

namespace host::ops {

struct StraightenUvsOptions {
  double curvature = 0;  ///< 0 straight; 1 a half circle away from the shell, -1 into it
  double preserveLength =
      1;  ///< 1 keeps the shares of the way between the UVs, 0 spaces them evenly
  double blendOriginal = 0;  ///< 1 leaves the UVs where they were
  Index gapTolerance = 5;    ///< so many UVs between listed ones are taken along
};

/// Lays runs of UVs along the borders of shells on a line, or an arc, between their ends, which
/// stay. UVs inside shells, and runs of fewer than three, don't move. Linear.
/// @return how many UVs moved; an error when a border is listed all around, which has no ends
[[nodiscard]] Result<Index> straightenUvBorders(mesh::Mesh& mesh, int uvSet,
                                                std::span<const UvId> uvs,
                                                const StraightenUvsOptions& options = {});

}  // namespace host::ops
