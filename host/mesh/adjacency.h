#pragma once

#include <span>
#include <vector>

#include "host/base/ids.h"
#include "host/mesh/topology.h"

namespace host::mesh {

/// Compressed incidence lists of one topology. All lists are ascending in id. Linear to build.
///
/// It refers to the topology it was built from, which must outlive it; Mesh::adjacency() sees to
/// that.
class Adjacency {
 public:
  Adjacency(const Topology& topology, Index vertexCount);

  [[nodiscard]] Index vertexCount() const { return vertexCount_; }
  [[nodiscard]] std::span<const EdgeId> vertexEdges(VertexId v) const { return vertexEdges_.of(v); }
  [[nodiscard]] std::span<const FaceId> vertexFaces(VertexId v) const { return vertexFaces_.of(v); }
  /// The corners at vertex v, ascending; a face that visits v twice gives two.
  [[nodiscard]] std::span<const CornerId> vertexCorners(VertexId v) const {
    return vertexCorners_.of(v);
  }
  /// The faces at edge e, ascending; a face that walks e twice counts once.
  [[nodiscard]] std::span<const FaceId> edgeFaces(EdgeId e) const { return edgeFaces_.of(e); }
  /// The corners that walk edge e, ascending.
  [[nodiscard]] std::span<const CornerId> edgeCorners(EdgeId e) const { return edgeCorners_.of(e); }
  [[nodiscard]] FaceId cornerFace(CornerId c) const { return cornerFaces_[c]; }
  /// The next and previous corner around the corner's face.
  [[nodiscard]] CornerId nextCorner(CornerId c) const {
    const FaceId f = cornerFace(c);
    return c + 1 == topology_->faceOffsets[f + 1] ? topology_->faceOffsets[f] : c + 1;
  }
  [[nodiscard]] CornerId previousCorner(CornerId c) const {
    const FaceId f = cornerFace(c);
    return (c == topology_->faceOffsets[f] ? topology_->faceOffsets[f + 1] : c) - 1;
  }
  /// The other corner that walks c's edge, -1 at borders and non-manifold edges.
  [[nodiscard]] CornerId twin(CornerId c) const {
    const auto walks = edgeCorners(topology_->cornerEdges[c]);
    if (walks.size() != 2) return kNone;
    return walks[0] == c ? walks[1] : walks[0];
  }

  [[nodiscard]] bool isBorderEdge(EdgeId e) const { return edgeFaces(e).size() == 1; }
  /// Whether the vertex touches a border edge.
  [[nodiscard]] bool isBorderVertex(VertexId v) const;
  /// Whether e has at most two faces, walking it in opposite directions when two.
  [[nodiscard]] bool isManifoldEdge(EdgeId e) const;
  /// Whether the faces at v make one fan (open or closed) across manifold edges. An isolated vertex
  /// is manifold.
  [[nodiscard]] bool isManifoldVertex(VertexId v) const;
  /// The edge between two vertices, the lowest if several; -1 when there is none. Linear in the
  /// smaller valence.
  [[nodiscard]] EdgeId findEdge(VertexId a, VertexId b) const;
  /// The corner of face f at vertex v, the first if several; -1 when there is none.
  [[nodiscard]] CornerId findCorner(FaceId f, VertexId v) const;
  /// Bytes of all lists.
  [[nodiscard]] std::size_t bytes() const;

 private:
  template <class Item>
  struct Lists {
    std::vector<Index> offsets;
    std::vector<Item> items;
    [[nodiscard]] std::span<const Item> of(Index i) const {
      const auto k = at(i);
      return {items.data() + offsets[k], items.data() + offsets[k + 1]};
    }
    void startCounting(std::size_t lists);
    void finishCounting();
    void finishFilling();
  };
  static Lists<FaceId> facesOf(const Lists<CornerId>& corners,
                               const PerElement<CornerId, FaceId>& cornerFaces);
  Lists<EdgeId> vertexEdges_;
  Lists<FaceId> vertexFaces_, edgeFaces_;
  Lists<CornerId> vertexCorners_, edgeCorners_;
  PerElement<CornerId, FaceId> cornerFaces_;
  const Topology* topology_;
  Index vertexCount_;
};

}  // namespace host::mesh
