#pragma once

#include <span>
#include <vector>

#include "host/base/ids.h"

namespace host::mesh {

struct Topology;

/// Compressed incidence lists of one topology. All lists are ascending in id. Linear to build.
class Adjacency {
 public:
  explicit Adjacency(const Topology& topology, Index vertexCount);

  [[nodiscard]] std::span<const EdgeId> vertexEdges(VertexId v) const { return vertexEdges_.of(v); }
  [[nodiscard]] std::span<const FaceId> vertexFaces(VertexId v) const { return vertexFaces_.of(v); }
  /// The corners at vertex v, ascending; a face that visits v twice gives two.
  [[nodiscard]] std::span<const CornerId> vertexCorners(VertexId v) const { return vertexCorners_.of(v); }
  [[nodiscard]] std::span<const FaceId> edgeFaces(EdgeId e) const { return edgeFaces_.of(e); }
  /// The corners that walk edge e, ascending.
  [[nodiscard]] std::span<const CornerId> edgeCorners(EdgeId e) const { return edgeCorners_.of(e); }
  [[nodiscard]] FaceId cornerFace(CornerId c) const { return cornerFaces_[static_cast<std::size_t>(c)]; }
  [[nodiscard]] bool isBorderEdge(EdgeId e) const { return edgeFaces(e).size() == 1; }
  /// The edge between two vertices, -1 when there is none. Linear in the smaller valence.
  [[nodiscard]] EdgeId findEdge(VertexId a, VertexId b) const;

 private:
  struct Lists {
    std::vector<Index> offsets;
    std::vector<Index> items;
    [[nodiscard]] std::span<const Index> of(Index i) const {
      const auto k = static_cast<std::size_t>(i);
      return {items.data() + offsets[k], items.data() + offsets[k + 1]};
    }
  };
  Lists vertexEdges_, vertexFaces_, vertexCorners_, edgeFaces_, edgeCorners_;
  std::vector<FaceId> cornerFaces_;
  const Topology* topology_;
};

}  // namespace host::mesh
