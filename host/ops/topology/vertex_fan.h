#pragma once

#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The faces around a vertex in order. Corner i walks out along edges[i] and in along edges[i + 1];
/// a closed fan's last edge is its first one again.
struct VertexFan {
  std::vector<CornerId> corners;
  std::vector<EdgeId> edges;  ///< one more than corners
  bool isClosed = false;
  bool isManifold = false;  ///< all corners of the vertex are in one fan, wound alike
};

/// Walks around a vertex from corner to corner. Costs the square of the valence at worst.
[[nodiscard]] VertexFan vertexFan(const mesh::Mesh& mesh, VertexId vertex);

/// Turns a closed fan so that it starts at edge `first` of its edges.
void turnFan(VertexFan& fan, std::size_t first);

}  // namespace host::ops
