#pragma once

#include <string>

#include "host/base/result.h"
#include "host/mesh/mesh.h"

namespace host::io {

/// Appends the statements that hold a mesh: sets, points, edges, normals, faces, creases, hidden
/// faces. Lengths are divided by `unit`, cm a unit. Linear, on all cores.
///
/// A fan of corners has one normal in the format: edges between corners whose locked normals differ
/// are written as hard.
/// @return an error, with nothing appended, when the mesh has numbers that are not finite.
Result<void> appendMesh(std::string& out, const mesh::Mesh& mesh, double unit);

/// Whether a mesh is as good as none: no vertices, and only the set that every mesh has.
[[nodiscard]] bool isBlank(const mesh::Mesh& mesh);

}  // namespace host::io
