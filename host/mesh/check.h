#pragma once

#include <string>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Checks every promise of a mesh and returns a sentence a broken one; empty when the mesh is
/// sound.
///
/// Faces and edges: offsets ascend and fit, loops of 3 or more, vertices in range, every corner's
/// edge joins the corner's vertex and the next one, no edge twice, none without a face, none from a
/// vertex to itself. Corner data: array sizes, ids in range, faces with UVs at all corners or none,
/// set names present and unique, current sets in range. Values: points, UVs, colours, locked
/// normals and creases finite, creases not negative. At most ten sentences a kind. Linear.
[[nodiscard]] std::vector<std::string> check(const Mesh& mesh);

}  // namespace host::mesh
