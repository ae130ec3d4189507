#pragma once

#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Finds the shortest way along edges between two vertices, by length in object space.
///
/// @return the edges from `from` to `to`; empty when both are the same or in different pieces. The
/// same mesh always gives the same one of several shortest ways. Costs n log n in the vertices
/// nearer than `to`.
[[nodiscard]] std::vector<EdgeId> shortestEdgePath(const Mesh& mesh, VertexId from, VertexId to);

/// Finds the shortest way from face to face across shared edges, by the distance between face
/// centres.
///
/// @return the faces from `from` to `to`, both included; empty when they are in different pieces
[[nodiscard]] std::vector<FaceId> shortestFacePath(const Mesh& mesh, FaceId from, FaceId to);

}  // namespace host::mesh
