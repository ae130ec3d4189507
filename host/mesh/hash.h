#pragma once

#include <cstdint>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Hashes every stored array bit for bit, names and orders included: equal meshes, and only they,
/// are expected to agree. Unlike ==, it tells -0 from 0 and finds NaN equal to itself. The same on
/// every run and machine. Linear.
[[nodiscard]] std::uint64_t hashMesh(const Mesh& mesh);
/// The part of it that depends on points alone.
[[nodiscard]] std::uint64_t hashPoints(const Mesh& mesh);
/// The part of it that depends on faces and edges alone.
[[nodiscard]] std::uint64_t hashTopology(const Mesh& mesh);

}  // namespace host::mesh
