#pragma once

#include "host/mesh/mesh.h"

namespace host::ops {

/// Lays the quads of a rectangle of a mesh, given by the vertices at two opposite corners, out over
/// the unit square, evenly, with UVs of their own: the first vertex at (0, 0), the second at
/// (1, 1), faces the right way up. Of several rectangles between them the one of fewest faces.
/// @return the faces row by row, or an error when the vertices are not the corners of a rectangle
///         of quads, the mesh unchanged
[[nodiscard]] Result<std::vector<FaceId>> mapUvRectangle(mesh::Mesh& mesh, int uvSet,
                                                         VertexId first, VertexId second);

}  // namespace host::ops
