#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/mesh/mesh.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Pins say how firmly UVs are held, 0 free to 1 pinned; unfolding, untangling and laying out leave
/// pinned UVs where they are. A shape keeps them by UV id in `pinData`, an element a UV set, as
/// scene files store them; polyPinUV nodes in its history add theirs below. They go by the numbers
/// of the shape's UVs: a command that numbers UVs anew does not take them along.

/// The weight of each UV of a set; empty when none is pinned.
[[nodiscard]] std::vector<float> uvPins(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);
/// The ids of the UVs that are held at all, ascending.
[[nodiscard]] std::vector<UvId> pinnedUvs(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);
/// Sets weights in `pinData`; `uvs` ascending, each once, `weights` one each. Recorded.
Result<void> setUvPins(scene::Document& document, dg::Node& shape, int uvSet,
                       const std::vector<UvId>& uvs, const std::vector<double>& weights);

/// The UV shells that have a pinned UV, ascending.
[[nodiscard]] std::vector<Index> pinnedShells(dg::Node& shape, const mesh::Mesh& mesh, int uvSet);

}  // namespace host::nodes
