#pragma once

#include <memory>
#include <numbers>
#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct BevelEdgesOptions {
  double offset =
      0.2;  ///< distance of the new edges from the old one, in the space below, cm; or a fraction
  bool offsetAsFraction =
      false;         ///< the offset is a fraction of half the shortest edge at the bevelled ones
  int segments = 1;  ///< faces across each edge
  double roundness = 1;  ///< of the profile with several segments: 0 flat, 1 an arc
  math::Matrix4 space;   ///< from object space to the space that the offset is measured in
  double smoothingAngle = std::numbers::pi / 6;  ///< new edges are hard beyond it, radians
  bool autoFit = true;          ///< an offset that would slide past the end of an edge is shortened
  bool fillNgons = true;        ///< close the gaps at vertices where strips meet by faces
  bool subdivideNgons = false;  ///< of rounded gaps: quads on the round instead of one face
  bool mergeVertices = true;    ///< weld vertices of the bevel that come to lie on each other
  double mergeTolerance = 0.0001;           ///< nearer than this, in the space above, cm; at most a
                                            ///< hundredth of the offset
  double miteringAngle = std::numbers::pi;  ///< two bevelled edges of a face that meet at more end
                                            ///< at the offset from their vertex, not from each
                                            ///< other's side; radians
  enum class UvAssignment {
    PlanarPerFace,  ///< new faces get UVs of their own, projected along their normals to scale
    Preserve        ///< new faces join the UVs of the faces beside them
  };
  UvAssignment uvAssignment = UvAssignment::Preserve;
  bool chamfer = true;  ///< new faces cut the edge off; otherwise they follow the old ones up to
                        ///< it, with an even number of segments, and there are no gaps to fill
};

struct BevelEdgesResult {
  EditMaps maps;               ///< faces keep their ids
  std::vector<FaceId> strips;  ///< new quads (triangles where an end stays a point), edge by edge
  std::vector<FaceId> caps;    ///< new faces at vertices, by vertex
};

/// Replaces edges by strips of faces.
///
/// Faces at a bevelled edge draw back from it. At a vertex with one bevelled edge the two new
/// corners slide along the edges beside it, and the vertex stays if it has more than three edges;
/// with two bevelled edges the strips meet; with more, or with one at a vertex that stays, a face
/// closes the gap, or with subdivideNgons quads do inside of the mesh, about one face in the middle
/// where the number of segments is odd. With several segments strips that meet end in arcs across
/// their edges, so that the corner of a cube becomes a part of a sphere. Border and non-manifold
/// edges, edges at vertices with several fans of faces, between faces wound against each other and
/// with one face on both sides are left alone.
///
/// Faces keep their ids, strips follow in order of the edges and then caps in order of the
/// vertices; vertices that were replaced go, new ones follow in order of the old vertices. Edges
/// that are left keep their ids, smoothness and crease. UVs and colours of faces are those of the
/// new places; strips join those of both sides or, at a seam, lie on the side of the face that
/// walks the edge forwards. Costs a copy of the mesh, a pass over it, and what is bevelled.
/// @return what became of components, or an error for a bad id or number, a space without inverse,
/// or when no listed edge can be bevelled, with `mesh` untouched.
[[nodiscard]] Result<BevelEdgesResult> bevelEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                                  const BevelEdgesOptions& options = {});

/// A bevel whose faces are there and whose vertices are still to be placed: for changing the offset
/// many times, as a drag does. Copies are cheap and share everything.
///
/// Keep it for one input mesh and one set of edges; hasTopologyOf() tells whether other options
/// need a new plan.
class BevelPlan {
 public:
  /// Costs what bevelEdges() does.
  /// @return an error as bevelEdges() gives it
  [[nodiscard]] static Result<BevelPlan> make(const Mesh& mesh, std::span<const EdgeId> edges,
                                              const BevelEdgesOptions& options);
  /// Whether options differ from those of the plan only in how wide, how round and how soft the
  /// bevel is, and in what is welded. Of a mesh with colours or locked normals, which blend as UVs
  /// do, not in width and roundness either.
  [[nodiscard]] bool hasTopologyOf(const BevelEdgesOptions& options) const;

  struct Placed {
    Mesh mesh;
    std::shared_ptr<const BevelEdgesResult> result;
  };
  /// What bevelEdges() makes with these options. While the same vertices come together as before
  /// the mesh shares all arrays but points, UVs and edge smoothness with the plan, and costs what
  /// is new: the plan keeps two earlier results and writes in them as soon as nobody else holds
  /// them (until then it copies these arrays). Not for several threads at once.
  /// @return an error for bad numbers, or for options that need another plan
  [[nodiscard]] Result<Placed> place(const BevelEdgesOptions& options) const;

 private:
  struct Data;
  friend Result<BevelEdgesResult> bevelEdges(Mesh&, std::span<const EdgeId>,
                                             const BevelEdgesOptions&);
  std::shared_ptr<const Data> data_;
};

}  // namespace host::ops
