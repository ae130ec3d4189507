#pragma once

#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The normals of a mesh without repeats: corners at one vertex that show the same normal share it.
struct NormalIds {
  std::vector<Index> ofCorner;
  std::vector<CornerId> corners;  ///< one a normal: the first corner that has it
  [[nodiscard]] Index count() const { return static_cast<Index>(corners.size()); }
};

/// Numbers the normals in the order in which corners first use them. A locked normal is never
/// shared with one that is not. Linear in corners times the normals at a vertex.
[[nodiscard]] NormalIds numberNormals(const mesh::Mesh& mesh);

}  // namespace host::ops
