#pragma once

#include <optional>
#include <vector>

#include "host/dg/plug.h"

namespace host::nodes {

/// How many elements an array of a mesh shape has that stands for parts of its mesh, none of which
/// are stored: vrts, edge, face, normals, uvSet, uvSetPoints, colorSet. Nothing for other arrays.
[[nodiscard]] std::optional<Index> meshPartCount(const dg::Plug& array);

/// The indices of the elements of an array: those that are there, or of parts of a mesh all.
[[nodiscard]] std::vector<Index> elementsOf(const dg::Plug& array);

}  // namespace host::nodes
