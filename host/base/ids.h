#pragma once

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

}  // namespace host
