#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "host/mesh/corner_carry.h"
#include "host/mesh/mesh.h"

namespace host::mesh {

struct RebuildOptions {
  bool dropUnusedVertices =
      false;  ///< drop vertices that lost their last face (or never had one, when new)
};

/// A rebuilt mesh and where things went. Removed components map to -1.
struct Rebuilt {
  Mesh mesh;
  std::vector<VertexId> vertexMap;  ///< id given by the rebuilder -> id in `mesh`
  std::vector<EdgeId> edgeMap;      ///< source edge -> edge in `mesh`
};

/// Builds a mesh out of another one from new face loops, carrying everything that hangs on corners,
/// edges, vertices and faces.
///
/// Numbering: vertices and faces as added; edges that survive keep their order and direction, new
/// ones follow in order of first use (face by face, corner k giving edge k -> k+1). An edge
/// survives when a new face joins the vertices that were kept for its ends. UV ids, colours and
/// locked normals follow the corners' sources (see corner_carry.h); smoothness and creases follow
/// the edge, or for new edges the one named by inheritEdge, else smooth and no crease. Linear in
/// both meshes.
class MeshRebuilder {
 public:
  explicit MeshRebuilder(const Mesh& source);
  void reserve(Index vertices, Index faces, Index corners);

  /// Keeps all source vertices under their ids. Call it first.
  void keepAllVertices();
  /// Keeps one source vertex, its crease included. Kept twice, the edges go with the first one.
  VertexId keepVertex(VertexId source);
  /// Lets a new vertex stand for one more source vertex: edges of both survive at it, and of edges
  /// that come to join the same vertices the lowest one does. A vertex kept already loses its own
  /// place.
  void mergeVertex(VertexId source, VertexId into);
  /// Lets a source edge survive as the edge between two other new vertices, in that direction.
  void replaceEdge(EdgeId source, VertexId a, VertexId b);

  /// Adds a vertex; `creaseSource` lends it its crease.
  VertexId addVertex(const Vec3f& point, VertexId creaseSource = kNone);
  void setPoint(VertexId vertex, const Vec3f& point) {
    points_[static_cast<std::size_t>(vertex)] = point;
  }
  [[nodiscard]] const Vec3f& point(VertexId vertex) const {
    return points_[static_cast<std::size_t>(vertex)];
  }
  [[nodiscard]] Index vertexCount() const { return static_cast<Index>(points_.size()); }
  /// The vertex kept first for a source vertex, -1 when none is.
  [[nodiscard]] VertexId vertexFor(VertexId source) const {
    return keptAs_[static_cast<std::size_t>(source)];
  }

  /// Starts a face; `source` lends it its visibility.
  void beginFace(FaceId source = kNone) { faceSources_.push_back(source); }
  /// Adds a corner with the data of a source corner, or with none.
  void addCorner(VertexId vertex, CornerId source = kNone) {
    cornerVertices_.push_back(vertex);
    corners_.add(source);
  }
  /// Adds a corner with blended data.
  void addCorner(VertexId vertex, std::span<const CornerWeight> blend) {
    cornerVertices_.push_back(vertex);
    corners_.add(blend);
  }
  /// Ends the face. It needs three corners, none at the vertex of its neighbour.
  FaceId endFace();
  /// Copies a source face whose vertices are all kept.
  FaceId copyFace(FaceId source);
  /// Copies the source faces [first, end), whose vertices are all kept.
  void copyFaces(FaceId first, FaceId end);
  /// Lets the edge between two vertices, should it be new, take smoothness and crease of a source
  /// edge.
  void inheritEdge(VertexId a, VertexId b, EdgeId source) { inherited_.push_back({a, b, source}); }

  /// Numbers a new edge before all that faces bring up later; without a face it is left out.
  void declareEdge(VertexId a, VertexId b) { declared_.push_back({a, b}); }

  /// Builds the mesh; the rebuilder is used up.
  [[nodiscard]] Rebuilt finish(const RebuildOptions& options = {});

 private:
  struct Inherited {
    VertexId a, b;
    EdgeId source;
  };
  class EdgeFinder;
  std::vector<VertexId> dropVertices();
  void buildEdges(Topology& topology, Rebuilt& result);
  void carryEdgeData(Mesh& mesh, const std::vector<EdgeId>& edgeSources) const;
  void carryVertexAndFaceData(Mesh& mesh) const;

  Mesh source_;
  std::vector<Vec3f> points_;
  std::vector<VertexId> vertexSources_;  // the source vertex kept, -1 for added ones
  std::vector<VertexId> creaseSources_;
  std::vector<VertexId> keptAs_;
  std::vector<FaceId> faceSources_;
  std::vector<CornerId> faceOffsets_{0};
  std::vector<VertexId> cornerVertices_;
  CornerSources corners_;
  std::vector<Inherited> inherited_;
  std::vector<EdgeVertices> declared_;
  std::vector<std::uint8_t> isMergeTarget_;  // a vertex; empty without merges
  std::unordered_map<EdgeId, EdgeVertices> replacedEdges_;
};

/// Keeps the faces for which `keep` is nonzero, in order, and the vertices they use (isolated
/// vertices stay). Corner data, flags and creases follow. Linear.
[[nodiscard]] Rebuilt keepFaces(const Mesh& mesh, std::span<const std::uint8_t> keep);

}  // namespace host::mesh
