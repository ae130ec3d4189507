#pragma once

#include <cstdint>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::viewport {

/// The number of triangles before those of `face`: every face of n corners gives n - 2, faces in order.
[[nodiscard]] inline std::size_t firstTriangle(const mesh::Mesh& mesh, FaceId face) {
  return static_cast<std::size_t>(mesh.firstCorner(face) - 2 * face);
}

/// Cuts every face into triangles, three corner ids each, wound as the face is.
///
/// Quads are cut along the diagonal that keeps both halves facing one way, the shorter one if both do; larger faces by
/// ear clipping in the plane of their normal, so concave faces are covered exactly. A face that crosses itself still gives n - 2
/// triangles. Linear in corners, quadratic in the size of a single face; parallel.
[[nodiscard]] std::vector<std::uint32_t> triangulateFaces(const mesh::Mesh& mesh);

}  // namespace host::viewport
