#pragma once

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Where two components that become one are put.
enum class MergePlace { First, Middle, Last };

struct MergeEdgesOptions {
  MergePlace place = MergePlace::Middle;
  bool mergesUvs = false;  ///< sews the maps there too
};

/// Makes one edge of two border edges.
///
/// Their ends are joined so that the faces at them come to wind alike. The lower vertex ids and the
/// first edge's smoothness and crease stay; ids close up. Linear in the mesh.
/// @return where components went, or an error that names the edge which is not on a border or not
/// there, with `mesh` untouched; also when the edges are one.
[[nodiscard]] Result<EditMaps> mergeEdges(Mesh& mesh, EdgeId first, EdgeId second,
                                          const MergeEdgesOptions& options = {});

}  // namespace host::ops
