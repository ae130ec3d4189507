#include "host/ops/topology/detach_components.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {

namespace {

class Detacher {
 public:
  Detacher(const Mesh& mesh, std::vector<std::uint8_t> partEdges,
           std::vector<std::uint8_t> partVertices)
      : mesh_(mesh),
        partEdges_(std::move(partEdges)),
        partVertices_(std::move(partVertices)),
        cornerVertex_(mesh.topology().cornerVertices) {}

  DetachResult run(Mesh& mesh) {
    mesh::MeshRebuilder rebuilder(mesh_);
    rebuilder.keepAllVertices();
    DetachResult result;
    for (VertexId v = 0; v < mesh_.vertexCount(); ++v) partVertex(v, rebuilder, result.vertices);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const CornerId first = mesh_.firstCorner(f), end = mesh_.firstCorner(f + 1);
      rebuilder.beginFace(f);
      for (CornerId c = first; c < end; ++c) rebuilder.addCorner(cornerVertex_[at(c)], c);
      rebuilder.endFace();
      for (CornerId c = first; c < end; ++c)
        rebuilder.inheritEdge(cornerVertex_[at(c)], cornerVertex_[at(c + 1 == end ? first : c + 1)],
                              mesh_.cornerEdge(c));
    }
    mesh = rebuilder.finish().mesh;
    result.vertices = sortedIds(result.vertices);
    return result;
  }

 private:
  [[nodiscard]] bool isParted(VertexId v, EdgeId e) const {
    return partEdges_[at(e)] != 0 || partVertices_[at(v)] != 0;
  }

  /// Corners at the vertex that hang together across edges that stay joined.
  void partVertex(VertexId v, mesh::MeshRebuilder& rebuilder, std::vector<VertexId>& made) {
    const mesh::Adjacency& adjacency = mesh_.adjacency();
    bool hasParted = partVertices_[at(v)] != 0;
    for (const EdgeId e : adjacency.vertexEdges(v)) hasParted = hasParted || isParted(v, e);
    if (!hasParted) return;
    const auto corners = adjacency.vertexCorners(v);
    JoinedSets sets(corners.size());
    for (const EdgeId e : adjacency.vertexEdges(v)) {
      if (isParted(v, e)) continue;
      Index before = kNone;
      for (std::size_t i = 0; i < corners.size(); ++i) {
        const CornerId c = corners[i];
        if (mesh_.cornerEdge(c) != e && mesh_.cornerEdge(adjacency.previousCorner(c)) != e)
          continue;
        if (before != kNone) sets.join(before, static_cast<Index>(i));
        before = static_cast<Index>(i);
      }
    }
    std::vector<VertexId> vertexOf(corners.size(), kNone);
    bool isFirst = true, isParted = false;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const auto set = at(sets.lowest(static_cast<Index>(i)));
      if (vertexOf[set] == kNone) {
        vertexOf[set] = isFirst ? v : rebuilder.addVertex(mesh_.points()[at(v)], v);
        if (!isFirst) {
          made.push_back(vertexOf[set]);
          isParted = true;
        }
        isFirst = false;
      }
      cornerVertex_[at(corners[i])] = vertexOf[set];
    }
    if (isParted) made.push_back(v);
  }

  Mesh mesh_;
  std::vector<std::uint8_t> partEdges_, partVertices_;
  std::vector<VertexId> cornerVertex_;
};

}  // namespace

Result<DetachResult> detachEdges(Mesh& mesh, std::span<const EdgeId> edges) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  return Detacher(mesh, flagsOf(edges, mesh.edgeCount()), flagsOf({}, mesh.vertexCount()))
      .run(mesh);
}

Result<DetachResult> detachVertices(Mesh& mesh, std::span<const VertexId> vertices) {
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  return Detacher(mesh, flagsOf({}, mesh.edgeCount()), flagsOf(vertices, mesh.vertexCount()))
      .run(mesh);
}

}  // namespace host::ops
