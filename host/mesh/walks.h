#pragma once

#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// A run of edges in walking order. A closed run starts at the edge asked for and does not repeat
/// it at the end; an open run goes from one end to the other with the edge asked for somewhere
/// inside.
struct EdgeWalk {
  std::vector<EdgeId> edges;
  bool isClosed = false;
};

/// Walks the edge loop through an edge: straight on across every vertex with four edges and four
/// faces, of whatever size. It ends at poles (other valences), at borders and at non-manifold edges
/// and vertices. The loop of a border edge is the border it lies on (see borderWalk). Costs the
/// length of the loop, once adjacency is built.
[[nodiscard]] EdgeWalk edgeLoop(const Mesh& mesh, EdgeId edge);

/// Walks the edge ring through an edge: from edge to opposite edge across quads. It ends at
/// borders, at faces that are not quads and at edges of three faces or more. Costs the length of
/// the ring.
[[nodiscard]] EdgeWalk edgeRing(const Mesh& mesh, EdgeId edge);

/// Walks along border edges. It ends where the border forks (a vertex with other than two border
/// edges). Empty when the edge is no border edge.
[[nodiscard]] EdgeWalk borderWalk(const Mesh& mesh, EdgeId edge);

/// All borders of a mesh, by their lowest edge. Linear.
[[nodiscard]] std::vector<EdgeWalk> allBorders(const Mesh& mesh);

/// The run of a walk between two of its edges, both included, from the first to the second: on a
/// closed walk the shorter way, forward (the walk's direction) when both are as long. Empty when
/// either is not on the walk.
[[nodiscard]] std::vector<EdgeId> partOfWalk(const EdgeWalk& walk, EdgeId from, EdgeId to);

/// The vertices along a walk whose edges are joined end to end: one more than edges, or as many
/// when it is closed.
[[nodiscard]] std::vector<VertexId> verticesOfWalk(const Mesh& mesh, const EdgeWalk& walk);

/// The edge straight on from `edge` across `vertex` as edgeLoop walks; -1 where the loop ends.
[[nodiscard]] EdgeId nextInLoop(const Mesh& mesh, EdgeId edge, VertexId vertex);
/// The edge opposite `edge` in `face`; -1 when the face is no quad.
[[nodiscard]] EdgeId oppositeInQuad(const Mesh& mesh, FaceId face, EdgeId edge);

}  // namespace host::mesh
