#pragma once

#include <string>

#include "host/mesh/mesh.h"

namespace host::io {

/// Appends the statements that hold a mesh: sets, points, edges, normals, faces, creases, hidden
/// faces. Lengths are divided by `unit`, cm a unit. Linear, on all cores.
///
/// A fan of corners has one normal in the format: edges between corners whose locked normals differ
/// are written as hard.
/// @return an error, with nothing appended, when the mesh has numbers that are not finite.
Result<void> appendMesh(std::string& out, const mesh::Mesh& mesh, double unit);

}  // namespace host::io
