#pragma once

#include <array>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/ops/boolean/box_tree.h"
#include "host/ops/boolean/exact_points.h"

namespace host::ops {

/// A triangle of a face, in the face's direction.
struct FaceTriangle {
  FaceId face = kNone;
  std::array<PointId, 3> points{};
  std::array<CornerId, 3> corners{};
  int axis = 0;           ///< its plane is seen along it
  bool isTurned = false;  ///< it turns to the right there
  bool isFlat = false;    ///< it has no area
};

/// A part of a face's triangle that the other mesh meets at its border at most.
struct FacePiece {
  std::array<PointId, 3> points;
  Index triangle;
};

/// Two meshes that lie in one, cut where they meet.
///
/// Faces are taken as the triangles that they are drawn with. Where triangles of the two sides
/// meet, the points and lines that they share are found exactly (see ExactPoints), and the
/// triangles are split along them. Points on an edge go to all faces at it, so that faces which
/// fitted together still do. A mesh may meet itself: lines that cross in a triangle get a point
/// there.
///
/// Costs n log n in the faces, and near that in what meets.
class Arrangement {
 public:
  /// @param united both meshes; @param secondFrom the second one's first face
  /// @return an error when a coordinate is not finite
  [[nodiscard]] Result<void> build(const mesh::Mesh& united, FaceId secondFrom);

  /// Takes one mesh as the first and an empty one as the second; nothing is cut.
  [[nodiscard]] Result<void> buildSideOnly(const mesh::Mesh& mesh) {
    mesh_ = &mesh;
    secondFrom_ = mesh.faceCount();
    return points_.setVertices(mesh.points());
  }

  [[nodiscard]] const mesh::Mesh& mesh() const { return *mesh_; }
  [[nodiscard]] const ExactPoints& points() const { return points_; }
  [[nodiscard]] int sideOf(FaceId face) const { return face < secondFrom_ ? 0 : 1; }
  [[nodiscard]] FaceId firstFace(int side) const { return side == 0 ? FaceId(0) : secondFrom_; }
  [[nodiscard]] FaceId endFace(int side) const {
    return side == 0 ? secondFrom_ : FaceId(mesh_->faceCount());
  }
  [[nodiscard]] const BoxTree& tree(int side) const { return trees_[side]; }

  /// Whether a face is given in pieces; others are whole.
  [[nodiscard]] bool isSplit(FaceId face) const { return isSplit_[at(face)] != 0; }
  [[nodiscard]] const std::vector<FacePiece>& pieces() const { return pieces_; }
  /// The pieces of a split face: from first to end.
  [[nodiscard]] std::pair<Index, Index> piecesOf(FaceId face) const;
  [[nodiscard]] const FaceTriangle& triangle(Index index) const { return triangles_[at(index)]; }
  /// The triangles of a face: from first to end. They are made when first asked for.
  std::pair<Index, Index> trianglesOf(FaceId face);
  /// The triangles of the other side in the plane of a triangle that touch it.
  [[nodiscard]] const std::vector<Index>& coplanar(Index triangle) const;

  /// Whether the meshes meet along the edge between two points.
  [[nodiscard]] bool isContact(PointId a, PointId b) const {
    return contactEdges_.contains(pairKey(a, b));
  }
  [[nodiscard]] bool isContact(PointId p) const {
    return at(p) < isContactPoint_.size() && isContactPoint_[at(p)] != 0;
  }
  /// The points strictly between two that are neighbours in a face; null for none.
  [[nodiscard]] const std::vector<PointId>* pointsBetween(PointId a, PointId b) const;

  [[nodiscard]] static std::uint64_t pairKey(PointId a, PointId b) {
    const auto low = static_cast<std::uint32_t>(a < b ? a : b),
               high = static_cast<std::uint32_t>(a < b ? b : a);
    return (std::uint64_t{low} << 32U) | high;
  }

 private:
  /// A line in a triangle; the plane that cuts it out there is another triangle's, or stands on one
  /// of the other's edges.
  struct Line {
    Index segment = 0, other = 0;
    int edge = -1;
  };
  struct Segment {
    PointId a, b;
    std::vector<PointId> between;
  };
  struct Cuts {
    std::vector<PointId> points;
    std::vector<Line> lines;
    std::vector<Index> coplanar;
  };
  using PointList = std::vector<PointId>;
  /// Where edges of two triangles in one plane cross.
  struct Crossing {
    PointId point;
    int edgeOfOne, edgeOfTwo;
    Index one;
  };

  [[nodiscard]] math::Box boxOf(FaceId face) const;
  [[nodiscard]] math::Box boxOf(const FaceTriangle& triangle) const;
  void buildTrees();
  void findContacts();
  void addTriangle(FaceId face, CornerId a, CornerId b, CornerId c);

  void meet(Index one, Index two);
  void meetAcross(Index cut, const Int128* heights, Index by, PointList& found);
  void meetInPlane(Index one, Index two);
  void crossEdges(Index one, Index two);
  void drawEdges(Index of, Index in);
  void noteInside(PointId p, Index triangle, const std::array<int, 3>& sides);
  void noteOnEdge(PointId p, PointId a, PointId b);
  void addLine(Index triangle, PointId a, PointId b, Index other, int edge);
  [[nodiscard]] std::array<int, 3> sidesInPlane(PointId p, Index triangle) const;

  void shareAcrossFlat();
  void crossLines(Index triangle);
  void touchLines(Index triangle, const std::vector<Line>& lines);
  void crossPair(Index triangle, const Line& one, const Line& two);
  [[nodiscard]] ExactPlane planeOf(const Line& line, Index in) const;
  void splitFaces();
  void splitTriangle(Index index);

  const mesh::Mesh* mesh_ = nullptr;
  FaceId secondFrom_ = 0;
  ExactPoints points_;
  BoxTree trees_[2];
  std::vector<FaceTriangle> triangles_;
  std::vector<Index> firstTriangle_;  ///< a face; kNone while not made
  std::unordered_map<Index, Cuts> cuts_;
  std::vector<Index> cutTriangles_;  ///< with an entry in cuts_, in order of their first contact
  std::vector<Segment> segments_;
  std::unordered_map<std::uint64_t, Index> segmentOf_;
  std::unordered_map<std::uint64_t, PointList> edgePoints_;
  std::unordered_set<std::uint64_t> contactEdges_;
  std::vector<Crossing> contactCrossings_;  ///< of the pair at hand
  std::vector<std::uint8_t> isContactPoint_;
  std::vector<std::uint8_t> isSplit_;
  std::vector<FacePiece> pieces_;
  std::unordered_map<FaceId, std::pair<Index, Index>> piecesOf_;

  Cuts& cutsOf(Index triangle);
  void markContact(PointId p);
};

}  // namespace host::ops
