#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

using mesh::Mesh;

/// Where the components of the mesh before an operation went; -1 for those that are gone.
struct EditMaps {
  PerElement<VertexId, VertexId> vertices;
  PerElement<EdgeId, EdgeId> edges;
  PerElement<FaceId, FaceId> faces;
};

/// Takes ids through the map of a later operation; -1 stays.
template <AnyId Id>
void follow(std::vector<Id>& ids, const PerElement<Id, Id>& later) {
  for (Id& id : ids)
    if (id != kNone) id = later[id];
}
/// Takes all maps through those of a later operation.
inline void follow(EditMaps& maps, const EditMaps& later) {
  follow(maps.vertices, later.vertices);
  follow(maps.edges, later.edges);
  follow(maps.faces, later.faces);
}

/// Refuses ids outside [0, count); `what` names the component in the message.
[[nodiscard]] inline Result<void> checkIds(const char* what, IdView ids, Index count) {
  for (const Index id : ids)
    if (id < 0 || id >= count)
      return fail(ErrorKind::NotFound, "There is no {} {}: the mesh has {}", what, id, count);
  return {};
}

/// One byte a component, 1 for the ids given.
[[nodiscard]] inline std::vector<std::uint8_t> flagsOf(IdView ids, Index count) {
  std::vector<std::uint8_t> flags(at(count), 0);
  for (const Index id : ids) flags[at(id)] = 1;
  return flags;
}

/// The ids in ascending order without repeats.
template <std::ranges::contiguous_range List>
[[nodiscard]] auto sortedIds(const List& ids) {
  std::vector<std::ranges::range_value_t<List>> sorted(ids.begin(), ids.end());
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
    while (parents_[at(item)] != item) {
      Index& parent = parents_[at(item)];
      parent = parents_[at(parent)];
      item = parent;
    }
    return item;
  }
  /// Joins two sets. @return false when they were one already.
  bool join(Index a, Index b) {
    a = lowest(a);
    b = lowest(b);
    if (a == b) return false;
    parents_[at(std::max(a, b))] = std::min(a, b);
    return true;
  }

 private:
  std::vector<Index> parents_;
};

}  // namespace host::ops
