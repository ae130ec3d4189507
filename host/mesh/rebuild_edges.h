#pragma once

#include <optional>

#include "host/mesh/edge_table.h"
#include "host/mesh/rebuild.h"

namespace host::mesh {

/// Finds edges under provisional ids: a source edge under its own, new edges behind those of the
/// source. The table is made only when a corner's own source does not tell its edge.
class MeshRebuilder::EdgeFinder {
 public:
  explicit EdgeFinder(const MeshRebuilder& rebuilder)
      : rebuilder_(rebuilder), source_(rebuilder.source_.topology()) {}

  /// The edge from one listed corner to the next, told by their source corners; -1 when they don't.
  [[nodiscard]] EdgeId fromSources(std::size_t corner, std::size_t next) const;
  EdgeId findOrAdd(VertexId a, VertexId b);
  EdgeId find(VertexId a, VertexId b);

  /// Source edges and new ones.
  [[nodiscard]] Index provisionalCount() const {
    return static_cast<Index>(source_.edges.size() + edges_.size() - tableSources_.size());
  }
  /// The ends of a new edge, by its number behind those of the source.
  [[nodiscard]] EdgeVertices newEdge(std::size_t i) const {
    return edges_[tableSources_.size() + i];
  }

 private:
  [[nodiscard]] VertexId keptSource(VertexId vertex) const {
    const VertexId s = rebuilder_.vertexSource(vertex);
    return s != kNone && rebuilder_.vertexFor(s) == vertex ? s : kNone;
  }
  [[nodiscard]] EdgeVertices kept(EdgeId e) const;
  [[nodiscard]] EdgeId toProvisional(EdgeId inTable) const;
  [[nodiscard]] EdgeId plainSourceEdge(VertexId a, VertexId b) const;
  void makeTable();
  void addSourceEdge(EdgeId e);

  const MeshRebuilder& rebuilder_;
  const Topology& source_;
  std::vector<EdgeVertices> edges_;   // source edges that moved, then new ones
  std::vector<EdgeId> tableSources_;  // the source edge of each of the former
  std::optional<EdgeTable> table_;
};

}  // namespace host::mesh
