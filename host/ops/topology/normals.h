#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// What polygon normals are turned into.
enum class NormalMode {
  Reverse = 0,              ///< the listed faces are turned over
  Unlock = 1,               ///< locked normals of the listed faces are given up
  Conform = 2,              ///< the listed faces are made to wind alike
  ReverseAndExtract = 3,    ///< the listed faces are turned over and come off the others
  ReverseAndPropagate = 4,  ///< all faces connected with a listed one by edges are turned over
};

struct NormalsResult {
  std::vector<FaceId> faces;  ///< faces that changed, ascending; ids are what they were
};

/// Turns faces over or puts their normals in order.
///
/// Reversing and conforming as in reverseFaces() and conformFaces(). Extracted faces get vertices
/// of their own at the border of the selection, in the order their corners meet them, behind the
/// old ones; UVs, colours and everything on edges come along (see chipOff()). Linear in the mesh.
/// @return an error for a bad id, with `mesh` untouched.
[[nodiscard]] Result<NormalsResult> changeNormals(Mesh& mesh, std::span<const FaceId> faces,
                                                  NormalMode mode);

}  // namespace host::ops
