#pragma once

#include <span>
#include <unordered_map>
#include <vector>

#include "host/mesh/corner_carry.h"
#include "host/mesh/mesh.h"
#include "host/mesh/provenance.h"

namespace host::mesh {

struct RebuildOptions {
  bool dropUnusedVertices =
      false;  ///< drop vertices that lost their last face (or never had one, when new)
};

/// A rebuilt mesh and where things went. Removed components map to -1.
struct Rebuilt {
  Mesh mesh;
  PerElement<VertexId, VertexId> vertexMap;  ///< id given by the rebuilder -> id in `mesh`
  PerElement<EdgeId, EdgeId> edgeMap;        ///< source edge -> edge in `mesh`
  std::vector<PerElement<UvId, UvId>>
      uvMaps;  ///< by UV set: source UV -> UV in `mesh`; empty: all stay
};

/// Builds a mesh out of another one from new face loops, carrying everything that hangs on corners,
/// edges, vertices and faces.
///
/// Numbering: vertices and faces as added; edges that survive keep their order and direction, new
/// ones follow in order of first use (face by face, corner k giving edge k -> k+1). An edge
/// survives when a new face joins the vertices that were kept for its ends. UV ids, colours and
/// locked normals follow the corners' sources (see corner_carry.h); smoothness and creases follow
/// the edge, or for new edges the one named by inheritEdge, else smooth and no crease. Who follows
/// provenance is told of the sources of faces, of the vertices that were kept, and of the edges
/// that survive or inherit.
///
/// Costs a copy of the arrays, a pass over them where components go, and what is added one by one:
/// faces copied in runs and vertices kept all together cost nothing each.
class MeshRebuilder {
 public:
  explicit MeshRebuilder(const Mesh& source);

  /// Keeps all source vertices under their ids. Call it first.
  void keepAllVertices();
  /// Keeps one source vertex, its crease included. Kept twice, the edges go with the first one.
  VertexId keepVertex(VertexId source);
  /// Lets a new vertex stand for one more source vertex: edges of both survive at it, and of edges
  /// that come to join the same vertices the lowest one does. A vertex kept already loses its own
  /// place.
  void mergeVertex(VertexId source, VertexId into);
  /// Lets go of a source vertex: it is dropped when no face uses it, also if none ever did.
  void releaseVertex(VertexId source) { released_.push_back(source); }
  /// Lets a source edge survive as the edge between two other new vertices, in that direction.
  void replaceEdge(EdgeId source, VertexId a, VertexId b);

  /// Adds a vertex; `creaseSource` lends it its crease.
  VertexId addVertex(const Vec3f& point, VertexId creaseSource = kNone);
  void setPoint(VertexId vertex, const Vec3f& point);
  [[nodiscard]] const Vec3f& point(VertexId vertex) const;
  [[nodiscard]] Index vertexCount() const {
    return allKept_ + static_cast<Index>(addedPoints_.size());
  }
  /// The vertex kept first for a source vertex, -1 when none is.
  [[nodiscard]] VertexId vertexFor(VertexId source) const {
    if (keptAs_.empty()) return allKept_ > 0 ? source : kNone;
    return keptAs_[source];
  }

  /// Starts a face; `source` lends it its visibility.
  void beginFace(FaceId source = kNone);
  /// Adds a corner with the data of a source corner, or with none.
  void addCorner(VertexId vertex, CornerId source = kNone) {
    listedVertices_.push_back(vertex);
    corners_.add(source);
  }
  /// Adds a corner with blended data.
  void addCorner(VertexId vertex, std::span<const CornerWeight> blend) {
    listedVertices_.push_back(vertex);
    corners_.add(blend);
  }
  /// Ends the face. It needs three corners, none at the vertex of its neighbour.
  FaceId endFace();
  /// Copies a source face whose vertices are all kept. Merge vertices before.
  FaceId copyFace(FaceId source);
  /// Copies the source faces [first, end), whose vertices are all kept and none of them merged.
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
  /// Faces in a row: copies of source faces from `source` on, or listed ones.
  struct Stretch {
    FaceId source = kNone;
    Index faces = 0;
    bool isRun = false;
  };
  /// What is left of vertices and edges, in the rebuilder's ids; empty maps change nothing.
  struct Survivors {
    PerElement<VertexId, VertexId> vertexMap;
    PerElement<EdgeId, EdgeId> edgeMap;
    PerElement<VertexId, VertexId> sourceMap;  ///< source vertices to final ones
    Index vertices = 0, edges = 0;
  };
  class EdgeFinder;
  [[nodiscard]] Provenance provenance(const Survivors& survivors, EdgeFinder& finder) const;
  [[nodiscard]] VertexId vertexSource(VertexId v) const {
    return v < allKept_ ? v : addedSources_[at(v - allKept_)];
  }
  void listKept();
  [[nodiscard]] bool touchesMerge(FaceId source) const;
  [[nodiscard]] bool isMergeTarget(VertexId vertex) const {
    return at(vertex) < isMergeTarget_.size() && isMergeTarget_[vertex] != 0;
  }
  [[nodiscard]] std::vector<EdgeId> findListedEdges(EdgeFinder& finder) const;
  [[nodiscard]] Survivors findSurvivors(const std::vector<EdgeId>& listedEdges, Index edgeCount,
                                        bool dropUnused) const;
  void markUsed(const std::vector<EdgeId>& listedEdges, std::vector<std::uint8_t>& vertexStays,
                std::vector<std::uint8_t>& edgeStays) const;
  [[nodiscard]] Topology assembleTopology(const Survivors& survivors,
                                          const std::vector<EdgeId>& listedEdges,
                                          const EdgeFinder& finder) const;
  [[nodiscard]] std::vector<Vec3f> assemblePoints(const Survivors& survivors) const;
  void carryEdgeData(Mesh& mesh, const Survivors& survivors, EdgeFinder& finder) const;
  void carryVertexAndFaceData(Mesh& mesh, const Survivors& survivors) const;

  Mesh source_;
  Index allKept_ = 0;  // source vertices that were kept under their ids
  std::vector<Vec3f> addedPoints_;
  std::vector<VertexId> addedSources_;  // the source vertex kept, -1 for added ones
  std::vector<VertexId> addedCreases_;  // whose crease they take
  std::unordered_map<VertexId, Vec3f> movedPoints_;
  PerElement<VertexId, VertexId> keptAs_;  // a source vertex; empty while all or none are kept
  std::vector<VertexId> released_;
  std::vector<Stretch> stretches_;
  Index faceCount_ = 0;
  std::vector<FaceId> listedSources_;     // a listed face
  std::vector<std::size_t> listedEnds_;   // a listed face: where its corners end
  std::vector<VertexId> listedVertices_;  // a listed corner
  CornerSources corners_;
  std::vector<Inherited> inherited_;
  std::vector<EdgeVertices> declared_;
  PerElement<VertexId, std::uint8_t> isMergeTarget_;  // a vertex; empty without merges
  std::unordered_map<EdgeId, EdgeVertices> replacedEdges_;
};

/// Keeps the faces for which `keep` is nonzero, in order, and the vertices they use (isolated
/// vertices stay). Corner data, flags and creases follow. Linear.
[[nodiscard]] Rebuilt keepFaces(const Mesh& mesh, std::span<const std::uint8_t> keep);

}  // namespace host::mesh
