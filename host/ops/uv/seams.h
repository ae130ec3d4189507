#pragma once

#include <span>
#include <utility>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// Edges where UVs part, a byte an edge.
using SeamFlags = std::vector<std::uint8_t>;

/// The hard edges.
[[nodiscard]] SeamFlags hardEdgeSeams(const mesh::Mesh& mesh);
/// The edges whose two faces meet at more than an angle between their normals.
[[nodiscard]] SeamFlags angleSeams(const mesh::Mesh& mesh, double degrees);
/// The edges where the UVs of a set part already.
[[nodiscard]] SeamFlags uvSeams(const mesh::Mesh& mesh, int uvSet);
/// Edges given as pairs of vertices. @return an error naming the first pair that is no edge
[[nodiscard]] Result<SeamFlags> seamsBetween(const mesh::Mesh& mesh,
                                             std::span<const std::pair<VertexId, VertexId>> pairs);

/// Adds seams until every piece between them can be laid flat: edges of more than two faces and of
/// faces wound against each other part, handles and holes' connections are cut along a short cut
/// graph (Erickson and Har-Peled 2004 call it that), and a closed piece along a path between two
/// vertices far from each other. Linear but for the paths, n log n.
/// @return how many pieces had to be cut
Index openPieces(const mesh::Mesh& mesh, SeamFlags& seams);

/// UVs for all faces that have area, all at the origin: corners share one where faces meet at an
/// edge that is no seam. Linear.
[[nodiscard]] mesh::UvSet uvsBetweenSeams(const mesh::Mesh& mesh, const SeamFlags& seams,
                                          std::string name);

}  // namespace host::ops
