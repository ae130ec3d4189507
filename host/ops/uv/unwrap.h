#pragma once

#include <string>
#include <vector>

#include "host/ops/uv/report.h"
#include "host/ops/uv/seams.h"

namespace host::ops {

struct UnwrapOptions {
  double packing = 0.2;  ///< gap between shells, percent of the square
  int mapSize = 1024;    ///< pixels, for coverage and gaps of the report
  /// Symmetric Dirichlet energy, 4 at best: shells that come out above it are cut further along
  /// short ways, and seams that end inside them taken back. 0 leaves the seams as they are.
  double mostStretch = 0;
  bool dropsSlits = false;  ///< takes back seams that end inside a piece before all else
};

struct UnwrapResult {
  Index shells = 0, opened = 0;   ///< pieces that needed more cuts than the seams
  Index relieved = 0;             ///< pieces that were cut further for their stretch
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
