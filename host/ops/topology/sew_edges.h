#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SewEdgesOptions {
  double tolerance = 1e-5;  ///< how far ends may lie apart, in the space below, cm
  math::Matrix4 space{};    ///< from object space to the space distances are measured in
  bool mergesUvs = true;    ///< sews the maps there too
};

/// Joins border edges that lie on each other, or nearly.
///
/// In order each listed border edge is joined to the nearest listed one that its face can wind
/// along with and both of whose ends are within the tolerance; ends that become one lie in their
/// middle. The lower ids stay, with the smoothness and crease of the lower edge; ids close up.
/// Edges that are on no border are passed over. Near linear in the listed edges, linear in the
/// mesh.
/// @return the edges that were joined and where components went; an error for a bad id or
/// tolerance, with `mesh` untouched
struct SewEdgesResult {
  EditMaps maps;
  std::vector<EdgeId> sewn;
};
[[nodiscard]] Result<SewEdgesResult> sewEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                              const SewEdgesOptions& options = {});

}  // namespace host::ops
