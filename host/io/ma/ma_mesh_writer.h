#pragma once

#include <string>

#include "host/mesh/mesh.h"

namespace host::io {

/// Appends the statements that hold a mesh: sets, points, edges, normals, faces, creases, hidden
/// faces. Lengths are divided by `unit`, cm a unit. Linear, on all cores.
///
/// A fan of corners has one normal in the format: edges between corners whose locked normals differ
/// are written as hard. Numbers that are not finite are written as 0.
/// @return what the text does not say as the mesh has it
struct MaMeshLosses {
  std::size_t notFinite = 0;  ///< numbers written as 0
  Index hardened = 0;         ///< smooth edges written as hard
};
MaMeshLosses appendMesh(std::string& out, const mesh::Mesh& mesh, double unit);

/// Whether a mesh is as good as none: no vertices, and only the set that every mesh has.
[[nodiscard]] bool isBlank(const mesh::Mesh& mesh);

}  // namespace host::io
