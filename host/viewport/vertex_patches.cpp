#include "host/viewport/vertex_patches.h"

#include <unordered_map>

namespace host::viewport {

namespace {

struct Told {
  std::weak_ptr<const VertexData> data;
  VertexPatches patches;
};

/// By address; what is told of arrays that are gone counts for nothing and goes with the next
/// change. Drawing is the main thread's.
std::unordered_map<const VertexData*, Told>& all() {
  static std::unordered_map<const VertexData*, Told> told;
  return told;
}

}  // namespace

void tellChanged(const VertexDataPtr& data, std::span<const std::uint32_t> vertices) {
  constexpr std::size_t kPatchesKept = 8;
  std::erase_if(all(), [](const auto& entry) { return entry.second.data.expired(); });
  Told& told = all()[data.get()];
  told.data = data;
  VertexPatches& known = told.patches;
  if (known.patches.size() == kPatchesKept) known.patches.erase(known.patches.begin());
  known.patches.push_back({++known.revision, {vertices.begin(), vertices.end()}});
}

const VertexPatches& patchesOf(const VertexDataPtr& data) {
  static const VertexPatches none;
  const auto found = all().find(data.get());
  return found != all().end() && found->second.data.lock() == data ? found->second.patches : none;
}

}  // namespace host::viewport
