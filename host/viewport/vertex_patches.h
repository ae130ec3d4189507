#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "host/viewport/draw_list.h"

namespace host::viewport {

/// Vertices whose places or normals are others than in the revision before.
struct VertexPatch {
  std::uint64_t revision = 0;
  std::vector<std::uint32_t> vertices;
};

/// What has been changed in vertex arrays between frames, for who keeps a copy of them. Arrays that
/// were never changed are at revision 0 and have no patches.
struct VertexPatches {
  std::uint64_t revision = 0;
  std::vector<VertexPatch> patches;  ///< the last ones, newest last

  /// Whether the patches tell all that has changed since a revision.
  [[nodiscard]] bool reachBackTo(std::uint64_t since) const {
    return since == revision || (!patches.empty() && patches.front().revision <= since + 1);
  }
};

/// Tells that places or normals of some vertices have been changed.
void tellChanged(const VertexDataPtr& data, std::span<const std::uint32_t> vertices);
/// What has been told about arrays; it stands until the next change of any.
[[nodiscard]] const VertexPatches& patchesOf(const VertexDataPtr& data);

}  // namespace host::viewport
