#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

using mesh::Mesh;

/// Where the components of the mesh before an operation went; -1 for those that are gone.
struct EditMaps {
  std::vector<VertexId> vertices;
  std::vector<EdgeId> edges;
  std::vector<FaceId> faces;
};

/// Refuses ids outside [0, count); `what` names the component in the message.
[[nodiscard]] inline Result<void> checkIds(const char* what, std::span<const Index> ids,
                                           Index count) {
  for (const Index id : ids)
    if (id < 0 || id >= count)
      return fail(ErrorKind::NotFound, "There is no {} {}: the mesh has {}", what, id, count);
  return {};
}

/// One byte a component, 1 for the ids given.
[[nodiscard]] inline std::vector<std::uint8_t> flagsOf(std::span<const Index> ids, Index count) {
  std::vector<std::uint8_t> flags(static_cast<std::size_t>(count), 0);
  for (const Index id : ids) flags[static_cast<std::size_t>(id)] = 1;
  return flags;
}

/// The ids in ascending order without repeats.
[[nodiscard]] inline std::vector<Index> sortedIds(std::span<const Index> ids) {
  std::vector<Index> sorted(ids.begin(), ids.end());
  std::sort(sorted.begin(), sorted.end());
  sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
  return sorted;
}

/// Sets of items that are joined pair by pair; each is known by its lowest item.
class JoinedSets {
 public:
  explicit JoinedSets(std::size_t count) : parents_(count) {
    for (std::size_t i = 0; i < count; ++i) parents_[i] = static_cast<Index>(i);
  }
  [[nodiscard]] Index lowest(Index item) {
    while (parents_[static_cast<std::size_t>(item)] != item) {
      Index& parent = parents_[static_cast<std::size_t>(item)];
      parent = parents_[static_cast<std::size_t>(parent)];
      item = parent;
    }
    return item;
  }
  /// Joins two sets. @return false when they were one already.
  bool join(Index a, Index b) {
    a = lowest(a);
    b = lowest(b);
    if (a == b) return false;
    parents_[static_cast<std::size_t>(std::max(a, b))] = std::min(a, b);
    return true;
  }

 private:
  std::vector<Index> parents_;
};

}  // namespace host::ops
