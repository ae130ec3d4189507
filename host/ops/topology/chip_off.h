#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/extrude_placement.h"

namespace host::ops {

/// `divisions` and `smoothingAngle` of the placement are not used.
struct ChipOffOptions : ExtrudePlacement {
  bool duplicate = true;  ///< the faces stay and copies come off; otherwise the faces themselves do
  bool keepFacesTogether = true;  ///< faces that share an edge stay joined; otherwise each comes
                                  ///< off by itself
};

struct ChipOffResult {
  EditMaps maps;              ///< of the components before; faces that come off keep their ids
  std::vector<FaceId> faces;  ///< what came off, ascending
};

/// Takes faces off a mesh, moved like extruded ones but without sides.
///
/// What comes off gets vertices of its own, which follow the old ones in the order in which the
/// faces' corners meet them, and edges that follow the old ones in the same order. Copies of faces
/// follow the old faces in ascending order; faces that come off themselves keep their ids, and
/// vertices and edges that no face uses any more go, so ids close up. UVs (shared with what stays),
/// colours, locked normals, hidden faces, edge smoothness and creases come along. Linear in the
/// mesh.
/// @return what became of components, or an error for a bad id or number or a space without
/// inverse, with `mesh` untouched.
[[nodiscard]] Result<ChipOffResult> chipOff(Mesh& mesh, std::span<const FaceId> faces,
                                            const ChipOffOptions& options = {});

}  // namespace host::ops
