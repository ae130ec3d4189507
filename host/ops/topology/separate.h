#pragma once

#include <vector>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Takes a mesh apart into its connected pieces, by their lowest face.
///
/// Faces that share a vertex are connected. In each piece components keep their order; corner data,
/// smoothness, creases, hidden faces and all sets with their names follow, UVs and colours without
/// those that the piece does not use. Isolated vertices belong to no piece. Linear, however many
/// pieces there are.
/// @return the pieces, one for a connected mesh, none for a mesh without faces.
[[nodiscard]] std::vector<Mesh> separate(const Mesh& mesh);

}  // namespace host::ops
