#pragma once

#include <span>

#include "host/mesh/mesh.h"

namespace host::ops {

/// Cuts UV shells apart where they cannot lie flat as they are: between faces that face up and
/// faces that face down, and, if asked for, where a shell covers itself. Faces are taken in order;
/// each piece takes its neighbours as long as they cover none of it. UVs at the cuts are doubled,
/// the new ones at the end; places stay. Shells of other faces stay.
/// @return how many pieces there are more than before
Index separateUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces, bool alsoOverlaps);

}  // namespace host::ops
