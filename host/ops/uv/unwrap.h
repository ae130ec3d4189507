#pragma once

#include <string>
#include <vector>

#include "host/ops/uv/report.h"
#include "host/ops/uv/seams.h"

namespace host::ops {

struct UnwrapOptions {
  double packing = 0.2;  ///< gap between shells, percent of the square
  int mapSize = 1024;    ///< pixels, for coverage and gaps of the report
};

struct UnwrapResult {
  Index shells = 0, opened = 0;   ///< pieces that needed more cuts than the seams
  Index facesWithoutUvs = 0;      ///< without area
  std::vector<std::string> left;  ///< a sentence for each shell that could not be laid flat
  UvReport report;
};

/// Gives meshes UVs of their own in their current sets: cuts each at its seams, opens what cannot
/// be laid flat, unfolds, and lays all of them out in one square at one scale. Faces without area
/// get no UVs.
/// @param seams per mesh
/// @return a result a mesh, or an error with all meshes untouched; also when a layout is worse than
/// promised: triangles turned over or shells on each other.
[[nodiscard]] Result<std::vector<UnwrapResult>> unwrap(std::span<mesh::Mesh> meshes,
                                                       std::vector<SeamFlags> seams,
                                                       const UnwrapOptions& options = {});

}  // namespace host::ops
