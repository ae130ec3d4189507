#pragma once

#include <span>
#include <vector>

#include "host/mesh/rebuild.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// A corner of a face whose edges are being cut: a source corner, or a place between it and the
/// next one.
struct CutCorner {
  VertexId vertex = kNone;
  CornerId source = kNone;
  CornerId next = kNone;  ///< kNone for a source corner as it is
  double t = 0;           ///< how far the corner lies towards `next`
};

/// The corners of a loop from one place to another on the way round, both included.
[[nodiscard]] std::vector<CutCorner> partOfLoop(const std::vector<CutCorner>& loop,
                                                std::size_t from, std::size_t to);

/// Cuts edges by new vertices and faces by chords, with data interpolated along the edges.
///
/// New vertices follow the old ones in the order of cutting. The piece of a cut edge at its first
/// vertex keeps the edge's id; the other pieces come behind the old edges and take its smoothness
/// and crease. Chords are smooth. A face's first piece keeps its id, the others follow behind the
/// old faces. Linear in the mesh.
class EdgeCutter {
 public:
  explicit EdgeCutter(const Mesh& mesh);

  /// Cuts an edge into `pieces` equal parts. An edge can be cut once. @return the first new vertex.
  VertexId cutEvenly(EdgeId edge, int pieces);
  /// Cuts an edge at ascending parameters between 0 and 1, measured from its first vertex.
  VertexId cutAt(EdgeId edge, std::span<const double> parameters);
  /// Numbers a new edge before those that the faces bring up later.
  void declareEdge(VertexId a, VertexId b) { rebuilder_.declareEdge(a, b); }
  [[nodiscard]] bool isCut(EdgeId edge) const { return cutEdgeOf_[at(edge)] != kNone; }
  /// The new vertex in the middle of an edge that was cut in two.
  [[nodiscard]] VertexId cutVertex(EdgeId edge) const;

  /// A face's loop with the new vertices of its edges in place.
  [[nodiscard]] std::vector<CutCorner> loop(FaceId face) const;
  /// Gives a face its new loop; faces must come in order, and each once.
  void setFace(FaceId face, std::span<const CutCorner> loop);
  /// Gives a face its loop with the new vertices of its edges in place.
  void keepFace(FaceId face);
  /// Gives all faces their loops in order: `build(face)` must do it for those that are touched,
  /// the others keep theirs. Faces with cut edges have to be touched.
  template <class IsTouched, class Build>
  void buildFaces(IsTouched isTouched, Build build) {
    FaceId next = 0;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (!isTouched(f)) continue;
      rebuilder_.copyFaces(next, f);
      build(f);
      next = f + 1;
    }
    rebuilder_.copyFaces(next, mesh_.faceCount());
  }
  /// Whether any of a face's edges is cut.
  [[nodiscard]] bool hasCut(FaceId face) const;
  /// Adds a piece of a face behind the old faces.
  void addPiece(FaceId face, std::vector<CutCorner> loop);
  /// Adds a vertex inside a face and a corner there that takes the mean of the face's corners.
  CutCorner addCentre(FaceId face, const math::Vec3f& point);

  /// What the cuts made of the mesh.
  struct Outcome {
    Mesh mesh;
    EditMaps maps;
    std::vector<FaceId> pieces;  ///< faces made by addPiece, in order
  };
  [[nodiscard]] Outcome finish();

 private:
  struct Piece {
    FaceId face;
    std::vector<CutCorner> loop;
  };
  struct Cut {
    double t;
    VertexId vertex;
  };
  void addCorner(FaceId face, const CutCorner& corner);

  Mesh mesh_;
  mesh::MeshRebuilder rebuilder_;
  struct CutEdge {
    std::size_t first;  // of its cuts
    Index count;
  };
  std::vector<Index> cutEdgeOf_;  // an edge; -1 where it is not cut
  std::vector<CutEdge> cutEdges_;
  std::vector<Cut> cuts_;
  std::vector<Piece> pieces_;
};

}  // namespace host::ops
