#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Deletes faces, and the edges and vertices that no other face uses.
///
/// The others keep their order and all their data; ids close up. Isolated vertices that were there
/// before stay. A face listed twice counts once; deleting all faces leaves a mesh without faces.
/// Linear in the mesh.
/// @return where components went, or an error for a bad id with `mesh` untouched.
[[nodiscard]] Result<EditMaps> deleteFaces(Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
