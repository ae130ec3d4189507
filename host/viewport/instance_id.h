#pragma once

#include <cstdint>

namespace host::viewport {

// RenderMesh::id says which shape it is and at which of its places. What is made of the mesh alone
// is kept by the shape: it is the same at all places.

constexpr int kPlaceBits = 20;

[[nodiscard]] constexpr std::uint64_t instanceId(std::uint64_t shape, std::uint64_t place) {
  return shape << kPlaceBits | (place & ((std::uint64_t{1} << kPlaceBits) - 1));
}
/// What the ids of all places of a shape have in common.
[[nodiscard]] constexpr std::uint64_t shapeOf(std::uint64_t id) {
  return id >> kPlaceBits;
}

}  // namespace host::viewport
