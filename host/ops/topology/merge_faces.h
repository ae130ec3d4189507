#pragma once

#include "host/ops/topology/edit_maps.h"
#include "host/ops/topology/merge_edges.h"

namespace host::ops {

struct MergeFacesOptions {
  bool moves = false;  ///< else both faces stay where they are
  MergePlace place = MergePlace::First;
  bool centers = true;  ///< middles come together; else faces only come into one plane
};

/// Makes the second face a hole of the first.
///
/// Faces have one loop here, so the first face becomes two polygons around the hole: the first one
/// under its id, the other in the second face's place, divided along the two short ways between
/// the loops. The second face goes; what was beside it hangs on the hole's rim. New corners take
/// the data of the first face's nearest corners, so the hole has no map of its own. Linear in the
/// mesh.
/// @return the two polygons, or an error for bad ids, equal faces and faces that share a vertex,
/// with `mesh` untouched.
[[nodiscard]] Result<std::vector<FaceId>> mergeFaces(Mesh& mesh, FaceId first, FaceId second,
                                                     const MergeFacesOptions& options = {});

}  // namespace host::ops
