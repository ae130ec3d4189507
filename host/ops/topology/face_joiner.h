#pragma once

#include <unordered_map>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/weld.h"

namespace host::ops {

/// Face loops as linked corners, for joining faces across edges and taking vertices out of loops.
///
/// Each corner of the source mesh is followed by another one of the same loop. Joined loops belong
/// to the lowest of their faces. Every step costs what it touches.
class FaceJoiner {
 public:
  explicit FaceJoiner(const Mesh& mesh);

  /// Removes an edge from between its two faces if that leaves one loop: the faces are joined, or a
  /// spike of one face goes. Spikes that this lays bare go too.
  /// @return false for border and non-manifold edges, faces wound against each other, and an edge
  /// that is the last
  ///         link to an island inside a face, which no loop could express.
  bool removeEdge(EdgeId edge);

  /// Takes a vertex with two edges left out of the loops around it, so that its two edges become
  /// one.
  /// @return false if a loop would have fewer than three corners or the neighbours are joined by an
  /// edge already.
  bool removeWingedVertex(VertexId vertex);

  /// Takes a vertex out of all loops; loops with fewer than three corners left go.
  void cutVertex(VertexId vertex);

  /// Whether any face is left at the vertex.
  [[nodiscard]] bool hasFaceAt(VertexId vertex) const { return !cornersLeftAt(vertex).empty(); }

  /// Writes the loops to `mesh`: vertices that lost their faces go, ids close up.
  [[nodiscard]] EditMaps finish(Mesh& mesh);

 private:
  struct Walks {  // the two corners that walk an edge
    CornerId a = kNone, b = kNone;
  };
  [[nodiscard]] std::size_t placeOf(CornerId c) const;
  [[nodiscard]] CornerId nextOf(CornerId c) const;
  [[nodiscard]] CornerId previousOf(CornerId c) const;
  [[nodiscard]] bool isAlive(CornerId c) const { return nextOf(c) != kNone; }
  void remove(CornerId c);
  void open(FaceId face);
  [[nodiscard]] VertexId vertexOf(CornerId corner) const;
  [[nodiscard]] EdgeId edgeOf(CornerId corner) const;
  [[nodiscard]] bool findWalks(EdgeId edge, Walks& walks) const;
  [[nodiscard]] bool isSpike(const Walks& walks) const;
  [[nodiscard]] std::vector<CornerId> cornersLeftAt(VertexId vertex) const;
  [[nodiscard]] Index loopSize(CornerId corner, Index limit) const;
  [[nodiscard]] bool areNeighbours(VertexId a, VertexId b) const;
  [[nodiscard]] bool hasCuts() const { return !edgeSource_.empty(); }
  void link(CornerId corner, CornerId next);
  void removeWalks(const Walks& walks);
  void removeSpikesFrom(CornerId corner);
  void bypass(CornerId corner);

  Mesh mesh_;
  const mesh::Adjacency& adjacency_;
  std::vector<Index> places_;   // a face: where its corners are in the lists below, once edited
  std::vector<FaceId> opened_;  // faces that are there
  std::vector<CornerId> next_, previous_;  // kNone in next_ where the corner is gone
  JoinedSets faces_;
  std::vector<VertexId> removed_;  // vertices that were taken out
  std::unordered_map<CornerId, EdgeId>
      edgeSource_;  // corners that walk an edge of their own, and whom it takes after
};

}  // namespace host::ops
