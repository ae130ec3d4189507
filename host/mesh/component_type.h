#pragma once

#include <cstdint>

#include "host/base/ids.h"

namespace host::mesh {

/// Kinds of mesh components. A vertex-face is known by its corner id; UV ids belong to one UV set.
enum class ComponentType : std::uint8_t { Vertex, Edge, Face, Uv, VertexFace };

/// The kind of component that an id names.
template <AnyId Id>
extern const ComponentType kTypeOf;
template <>
inline constexpr ComponentType kTypeOf<VertexId> = ComponentType::Vertex;
template <>
inline constexpr ComponentType kTypeOf<EdgeId> = ComponentType::Edge;
template <>
inline constexpr ComponentType kTypeOf<FaceId> = ComponentType::Face;
template <>
inline constexpr ComponentType kTypeOf<UvId> = ComponentType::Uv;
template <>
inline constexpr ComponentType kTypeOf<CornerId> = ComponentType::VertexFace;

}  // namespace host::mesh
