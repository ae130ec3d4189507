#pragma once

#include <vector>

#include "host/mesh/mesh.h"

namespace host::io {

/// The corners that share one stored normal: those at one vertex that are joined across smooth
/// edges of two faces.
struct NormalFans {
  std::vector<Index> ofCorner;  ///< a fan a corner, numbered as the corners first come to them
  Index count = 0;
};
/// Linear.
[[nodiscard]] NormalFans normalFans(const mesh::Mesh& mesh);

/// Makes edges hard so that the corners of every fan agree about their locked normal, which is all
/// that the format can hold. Says how many edges that were.
Index hardenAlongNormals(mesh::Mesh& mesh);

}  // namespace host::io
