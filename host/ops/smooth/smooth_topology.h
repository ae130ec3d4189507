#pragma once

#include <span>
#include <vector>

#include "host/mesh/corner_carry.h"
#include "host/mesh/mesh.h"

namespace host::ops {

/// The faces and edges of one subdivision step, before points are placed. Vertex ids: the old ones,
/// then one for each divided edge in ascending order, then one for each divided face.
struct SmoothTopology {
  mesh::Topology topology;
  Index rootEdges = 0;  ///< edges at the front that descend from edges of the first mesh
  std::vector<EdgeId> edgeParents;  ///< the old edge of each new one, -1 inside faces
  std::vector<FaceId> faceParents;  ///< the old face of each new one
  std::vector<std::uint8_t> isEdgeDivided;
  std::vector<VertexId> edgeVertices;  ///< an old edge: its new vertex, -1 where it is not divided
  std::vector<VertexId> faceVertices;  ///< an old face: its new vertex, likewise
  Index vertexCount = 0;
};

/// Divides each listed face into a quad for each corner and each of their edges in two; other faces
/// get more corners.
///
/// A face's quads take its place in the order of its corners. The first `rootEdges` edges are
/// followed by their halves in place; all other edges are numbered in order of first use, quad by
/// quad. Corner k of a quad's parent is corner k of its k-th quad; other parents' quads start at
/// the parent's corner. Linear.
[[nodiscard]] SmoothTopology divideTopology(const mesh::Mesh& mesh,
                                            std::span<const std::uint8_t> isDivided,
                                            Index rootEdges);

/// Calls `body(part, ordinal)` for the corners of the new faces in order, telling which part of the
/// parent each lies on.
struct SmoothCorner {
  enum class Kind { Corner, Edge, Face };
  Kind kind = Kind::Corner;
  FaceId face = kNone;      ///< the parent
  CornerId corner = kNone;  ///< the parent's corner, or the one that walks the parent's edge
};
template <class Body>
void forEachSmoothCorner(const mesh::Mesh& mesh, std::span<const std::uint8_t> isDivided,
                         std::span<const std::uint8_t> isEdgeDivided, Body body) {
  using Kind = SmoothCorner::Kind;
  const auto& old = mesh.topology();
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    const Index n = end - first;
    if (isDivided[at(f)] == 0) {
      for (CornerId c = first; c < end; ++c) {
        body(SmoothCorner{Kind::Corner, f, c}, c == first);
        if (isEdgeDivided[at(old.cornerEdges[c])] != 0) body(SmoothCorner{Kind::Edge, f, c}, false);
      }
      continue;
    }
    for (Index k = 0; k < n; ++k) {
      const CornerId corner = first + k, before = first + (k + n - 1) % n;
      const SmoothCorner quad[4] = {{Kind::Corner, f, corner},
                                    {Kind::Edge, f, corner},
                                    {Kind::Face, f, first},
                                    {Kind::Edge, f, before}};
      const Index turn = n == 4 ? (4 - k) % 4 : 0;
      for (Index i = 0; i < 4; ++i) body(quad[(i + turn) % 4], i == 0);
    }
  }
}

}  // namespace host::ops
