#pragma once

#include <cstdint>

namespace host::mesh {

/// Kinds of mesh components. A vertex-face is known by its corner id; UV ids belong to one UV set.
enum class ComponentType : std::uint8_t { Vertex, Edge, Face, Uv, VertexFace };

}  // namespace host::mesh
