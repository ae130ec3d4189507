#pragma once

#include <unordered_map>
#include <vector>

#include "host/mesh/rebuild.h"
#include "host/ops/boolean/arrangement.h"

namespace host::ops {

/// What becomes of a part of a mesh.
enum class Fate : std::uint8_t { Goes, Stays, Turns };

/// Puts a mesh together out of whole faces of an arrangement and parts of cut ones.
class LoopComposer {
 public:
  explicit LoopComposer(const Arrangement& arrangement);

  /// Faces come in the order in which they shall stand; `turned` ones are turned over.
  void addWhole(FaceId face, bool turned);
  /// Pieces of one face; connected ones become one polygon where that is possible.
  void addParts(FaceId face, const std::vector<FacePiece>& pieces, bool turned);
  [[nodiscard]] mesh::Mesh finish();

 private:
  /// A polygon of the result; without points the whole source face.
  struct Polygon {
    FaceId source;
    bool isTurned;
    std::vector<PointId> points;
  };
  /// What the data at a point of a cut face comes of.
  struct CornerData {
    CornerId corner = kNone;  ///< the face's own; else a blend
    std::vector<mesh::CornerWeight> blend = {};
  };
  /// Where the points of a cut face lie in it.
  struct FaceMap {
    std::unordered_map<PointId, CornerId> corners;
    std::unordered_map<PointId, Index> edges;      ///< position in the loop, of points on edges
    std::unordered_map<PointId, Index> triangles;  ///< of all points
  };

  struct Made {
    int side;
    bool isTurned;
  };

  void removeStraight();
  void placeVertices(mesh::MeshRebuilder& rebuilder);
  void addPolygons(mesh::MeshRebuilder& rebuilder);
  void addListed(mesh::MeshRebuilder& rebuilder, const Polygon& polygon);
  void inheritEdges(mesh::MeshRebuilder& rebuilder, const Polygon& polygon, const FaceMap& map,
                    const std::vector<VertexId>& vertices);
  [[nodiscard]] bool isPlain(const Polygon& polygon) const;
  [[nodiscard]] const FaceMap& mapOf(FaceId face) const { return maps_.at(face); }
  [[nodiscard]] CornerData dataAt(FaceId face, const FaceMap& map, PointId p) const;
  [[nodiscard]] VertexId vertexAt(const FaceMap& map, PointId p) const;

  const Arrangement& arrangement_;
  const mesh::Mesh& mesh_;
  std::vector<Polygon> polygons_;
  std::unordered_map<FaceId, FaceMap> maps_;
  std::vector<Made> made_;                        ///< a face of the result
  std::vector<std::uint8_t> isUsed_;              ///< a vertex of the source
  std::vector<VertexId> vertices_;                ///< a vertex of the source: the result's
  std::unordered_map<PointId, VertexId> shared_;  ///< points where the meshes meet, and new ones
};

}  // namespace host::ops
