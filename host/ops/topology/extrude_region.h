#pragma once

#include <span>
#include <vector>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::ops {

/// The regions that faces make up for an extrusion, and the copies of their vertices that move.
///
/// Copies are numbered in the order in which the corners of the faces, ascending, meet them.
class ExtrudeRegions {
 public:
  /// A copy of a vertex, for one region. Directions are in the placement's space.
  struct Copy {
    VertexId source = kNone;
    Index region = 0;
    math::Vec3 point;
    math::Vec3 outwards;  ///< moves the planes of the region's faces there out by one, as far as
                          ///< one point can; no longer than 4
    math::Vec3 normal;    ///< unit mean of the unit normals of the region's faces there
    math::Vec3 inset;     ///< moves the rim edges there by one
    bool isOnRim = false;
  };
  /// A piece of a region's border, along the face there.
  struct RimEdge {
    Index a = 0, b = 0;  ///< copies
    CornerId cornerA = kNone, cornerB = kNone;
    FaceId face = kNone;
  };

  /// @param faces ascending, no repeats. Linear in the mesh.
  ExtrudeRegions(const Mesh& mesh, std::vector<FaceId> faces, bool keepFacesTogether,
                 const math::Matrix4& space);

  [[nodiscard]] const std::vector<FaceId>& faces() const { return faces_; }
  [[nodiscard]] const std::vector<Copy>& copies() const { return copies_; }
  /// In order of the faces, then of their corners.
  [[nodiscard]] const std::vector<RimEdge>& rim() const { return rim_; }
  /// Listed faces of regions that are all of a piece of the mesh with a border: nothing is left
  /// below them.
  [[nodiscard]] const std::vector<FaceId>& wholePieces() const { return wholePieces_; }
  /// The copies that the corners of the i-th face become.
  [[nodiscard]] std::span<const Index> copiesOfFace(std::size_t i) const {
    return {cornerCopies_.data() + firstCorner_[i], cornerCopies_.data() + firstCorner_[i + 1]};
  }

  /// Places all copies at the fraction t of the way; `visit(copy, place)` takes the places in the
  /// placement's space.
  template <class Visit>
  void place(const ExtrudePlacement& placement, double t, Visit visit) const {
    const std::vector<ExtrudeMover> movers = moversOf(placement, t);
    for (std::size_t i = 0; i < copies_.size(); ++i) {
      const Copy& copy = copies_[i];
      visit(static_cast<Index>(i),
            movers[at(copy.region)].place(copy.point, copy.inset * placement.offset,
                                          copy.outwards * placement.thickness, copy.normal));
    }
  }

 private:
  struct Region {
    math::Vec3 centre, normal;
    Index vertices = 0;
  };
  void joinFaces(const Mesh& mesh, bool keepFacesTogether);
  void collectCopies(const Mesh& mesh, const math::Matrix4& space);
  void findOutwards(std::span<const math::Vec3> normals);
  void collectRim(const Mesh& mesh, bool keepFacesTogether, std::span<const math::Vec3> normals);
  void findWholePieces(const Mesh& mesh);
  [[nodiscard]] std::vector<ExtrudeMover> moversOf(const ExtrudePlacement& placement,
                                                   double t) const;

  std::vector<FaceId> faces_;
  std::vector<Index> regionOf_;  // a listed face
  std::vector<Region> regions_;
  std::vector<Copy> copies_;
  std::vector<RimEdge> rim_;
  std::vector<FaceId> wholePieces_;
  std::vector<std::size_t> firstCorner_;  // a listed face, and the end
  std::vector<Index> cornerCopies_;
};

}  // namespace host::ops
