#pragma once

#include <memory>
#include <span>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::ops {

struct ExtrudeFacesOptions : ExtrudePlacement {
  bool keepFacesTogether =
      true;  ///< faces that share an edge move as one region; otherwise each face by itself
};

struct ExtrudeFacesResult {
  EditMaps maps;              ///< extruded faces keep their ids
  std::vector<FaceId> caps;   ///< the extruded faces, ascending
  std::vector<FaceId> backs;  ///< what stays behind of pieces that were extruded whole
  std::vector<FaceId> sides;  ///< new quads, in order
};

/// Extrudes faces: copies of them move, quads along their rim join them to what they came from.
///
/// Numbering: extruded faces keep their ids. Their vertices are all new and follow the old ones in
/// the order in which the faces' corners meet them; with more divisions the rims between follow,
/// from the base up. Old vertices and edges that no face uses any more go, ids close up. New edges
/// follow the old ones: for each face in order the spokes and edge of each piece of rim, then the
/// edges within the region. A region that is all of a piece of the mesh with a border leaves its
/// faces behind, turned over, so that the result is closed: they follow all old faces in order,
/// each from its first corner backwards. Sides come last, one rim edge after the other, from the
/// base up; each is (old a, old b, new b, new a) along the extruded face. Extruded faces keep UVs,
/// colours and locked normals; sides have UVs without area along the rim, edges within a region
/// keep smoothness and crease. Linear in the mesh.
/// @return what became of components, or an error for a bad id or number or a space without
/// inverse, with `mesh`
///         untouched.
[[nodiscard]] Result<ExtrudeFacesResult> extrudeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                                      const ExtrudeFacesOptions& options = {});

/// An extrusion whose topology is done and whose points are still to be placed: for changing the
/// placement many times, as a drag does. Copies are cheap and share everything.
///
/// Keep it for one input mesh and one set of faces; hasTopologyOf() tells whether other options
/// need a new plan.
class ExtrudePlan {
 public:
  /// Builds everything but positions. Costs what extrudeFaces() does.
  /// @return an error as extrudeFaces() gives it
  [[nodiscard]] static Result<ExtrudePlan> make(const Mesh& mesh, std::span<const FaceId> faces,
                                                const ExtrudeFacesOptions& options);
  /// Whether options differ from those of the plan in placement only: offset, thickness, taper,
  /// twist, the transforms, pivot and smoothing angle.
  [[nodiscard]] bool hasTopologyOf(const ExtrudeFacesOptions& options) const;
  /// The extruded mesh, equal to what extrudeFaces() makes with these options. It shares all arrays
  /// but points and edge smoothness with the plan. Costs a copy of the points and the new points.
  /// @return an error for bad numbers, or for options that need another plan
  [[nodiscard]] Result<Mesh> place(const ExtrudeFacesOptions& options) const;
  /// What became of components; the same for all placements.
  [[nodiscard]] const ExtrudeFacesResult& result() const;

 private:
  struct Data;
  friend Result<ExtrudeFacesResult> extrudeFaces(Mesh&, std::span<const FaceId>,
                                                 const ExtrudeFacesOptions&);
  std::shared_ptr<const Data> data_;
};

}  // namespace host::ops
