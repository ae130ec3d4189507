#pragma once

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
  std::vector<FaceId> sides;  ///< new quads, in order
};

/// Extrudes faces: copies of them move, quads along their rim join them to what they came from.
///
/// Numbering: extruded faces keep their ids. Their vertices are all new and follow the old ones in
/// the order in which the faces' corners meet them; with more divisions the rims between follow,
/// from the base up. Old vertices and edges that no face uses any more go, ids close up. New edges
/// follow the old ones: for each face in order the spokes and edge of each piece of rim, then the
/// edges within the region. Sides follow all old faces, one rim edge after the other, from the base
/// up; each is (old a, old b, new b, new a) along the extruded face. Extruded faces keep UVs,
/// colours and locked normals; sides have UVs without area along the rim, edges within a region
/// keep smoothness and crease. Linear in the mesh.
/// @return what became of components, or an error for a bad id or number or a space without
/// inverse, with `mesh`
///         untouched.
[[nodiscard]] Result<ExtrudeFacesResult> extrudeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                                      const ExtrudeFacesOptions& options = {});

}  // namespace host::ops
