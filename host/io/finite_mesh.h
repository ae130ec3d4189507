#pragma once

#include <cstddef>

#include "host/mesh/mesh.h"

namespace host::io {

/// Makes numbers that are no finite ones 0: points, UVs, normals, colours, creases. No file format
/// has words for them, and one of them must not keep the rest from being saved. Nothing is copied
/// when all are good. Linear.
/// @return how many there were
std::size_t makeFinite(mesh::Mesh& mesh);

}  // namespace host::io
