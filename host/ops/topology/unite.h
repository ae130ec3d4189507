#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// A mesh and the matrix that takes its points to the united mesh's space.
struct UnitePart {
  Mesh mesh;
  math::Matrix4 space;
};

/// Puts meshes together in one: vertices, edges, faces and UVs of each part follow those of the
/// parts before.
///
/// UV and colour sets of the same name become one; parts without a set have no UVs or colours
/// there. The current sets are the first part's. Edge smoothness, creases and hidden faces are
/// kept; locked normals are turned with their part. A part whose matrix mirrors has its faces'
/// order kept and its loops reversed, so that it stays right side out. Linear.
/// @return an error when there are no parts, or too many components for one mesh.
[[nodiscard]] Result<Mesh> unite(std::span<const UnitePart> parts);

}  // namespace host::ops
