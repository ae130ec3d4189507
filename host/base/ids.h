#pragma once

#include <cstddef>
#include <cstdint>

namespace host {

/// Component indices as the host numbers them, 0-based; -1 is "none". Plain integers, so that whole
/// arrays of them pass to the API's integer arrays without conversion.
using Index = std::int32_t;
using VertexId = Index;
using EdgeId = Index;
using FaceId = Index;
using CornerId = Index;  ///< position in the mesh's face-corner arrays
using UvId = Index;

inline constexpr Index kNone = -1;

/// An index or a count as arrays take it.
[[nodiscard]] constexpr std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

}  // namespace host
