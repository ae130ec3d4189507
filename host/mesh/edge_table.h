#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "host/mesh/topology.h"

namespace host::mesh {

/// Finds or makes the edge between two vertices while a topology is built. Constant time a call
/// whatever the valence: edges hang in a short chain on their lower vertex, those past the chain's
/// limit in a hash table.
class EdgeTable {
 public:
  /// Starts with the edges already in `edges`, to which new ones are appended.
  EdgeTable(std::vector<EdgeVertices>& edges, Index vertexCount);

  /// The edge between a and b; a new one in direction a -> b when there is none.
  EdgeId findOrAdd(VertexId a, VertexId b) {
    const EdgeId found = find(a, b);
    return found != kNone ? found : add(a, b);
  }
  /// The edge between a and b, -1 when there is none.
  [[nodiscard]] EdgeId find(VertexId a, VertexId b) const;
  /// Adds an edge even if there is one between the two already.
  EdgeId add(VertexId a, VertexId b);

 private:
  void link(EdgeId e);
  [[nodiscard]] static std::uint64_t key(VertexId lo, VertexId hi) {
    return static_cast<std::uint64_t>(lo) << 32 | static_cast<std::uint32_t>(hi);
  }
  std::vector<EdgeVertices>& edges_;
  std::vector<EdgeId> first_;  // a vertex: the chain of edges whose lower end it is
  std::vector<EdgeId> next_;   // an edge
  std::unordered_map<std::uint64_t, EdgeId> overflow_;
};

}  // namespace host::mesh
