#pragma once

#include <algorithm>
#include <span>
#include <vector>

#include "host/mesh/component_type.h"
#include "host/mesh/mesh.h"

namespace host::mesh {

/// Which components of the other type belong to a set.
enum class Conversion {
  Connected,  ///< those that touch one of the set
  Contained,  ///< those all of whose own components are in the set
  Border,     ///< those connected but not contained
};

/// How many components of a kind the mesh has.
[[nodiscard]] Index componentCount(const Mesh& mesh, ComponentType kind, int uvSet = 0);

/// Converts a component set to another type.
///
/// Contained means: edges both of whose vertices, faces all of whose vertices, edges or UVs,
/// vertices all of whose edges or faces are in the set; a component without any (an isolated
/// vertex) is never contained. To its own type a set converts to itself (Connected, Contained) or
/// to nothing (Border).
/// @param ids components of kind `from`, any order, repeats allowed, each in range
/// @return sorted, without repeats. Linear in what the set touches, plus one pass over the set's
/// corners for UVs.
[[nodiscard]] std::vector<Index> convertComponents(const Mesh& mesh, ComponentType from, IdView ids,
                                                   ComponentType to,
                                                   Conversion conversion = Conversion::Connected,
                                                   int uvSet = 0);

/// The edges between a face of the set and the outside: shared with a face that is not in the set,
/// or a border of the mesh. Sorted.
[[nodiscard]] std::vector<EdgeId> boundaryEdges(const Mesh& mesh, std::span<const FaceId> faces);

/// Sorts and drops repeats.
template <AnyId Id>
void sortUnique(std::vector<Id>& ids) {
  if (!std::ranges::is_sorted(ids)) std::ranges::sort(ids);
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

}  // namespace host::mesh
