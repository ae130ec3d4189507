#pragma once

#include "host/mesh/provenance.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

/// The groups of a mesh on a mesh that was made of it: faces, edges and vertices by where they come
/// from; of an unknown origin (none) under their numbers, as far as there are that many. Groups
/// that stay as they are are shared; UVs and vertex-faces keep their numbers.
[[nodiscard]] scene::MeshGroupsPtr carriedGroups(const scene::MeshGroupsPtr& groups,
                                                 const mesh::Mesh& made,
                                                 const std::optional<mesh::Provenance>& origin);

/// What a group holds in a mesh, one component a type; empty when it has no such group.
[[nodiscard]] std::vector<scene::Component> membersOf(const scene::MeshGroupsPtr& groups,
                                                      std::int64_t id);
[[nodiscard]] bool hasGroup(const scene::MeshGroupsPtr& groups, std::int64_t id);

/// The groups with one of them replaced. A group that holds nothing stays known.
[[nodiscard]] scene::MeshGroupsPtr withGroup(const scene::MeshGroupsPtr& groups, std::int64_t id,
                                             std::vector<scene::Component> members);

}  // namespace host::nodes
