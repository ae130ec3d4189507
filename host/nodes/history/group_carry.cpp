#include "host/nodes/history/group_carry.h"

#include <algorithm>
#include <array>

namespace host::nodes {

namespace {

using mesh::Origins;
using scene::Component;
using scene::ComponentType;
using scene::MeshGroup;
using scene::MeshGroups;

Index countOf(const mesh::Mesh& mesh, ComponentType type) {
  switch (type) {
    case ComponentType::Vertex:
      return mesh.vertexCount();
    case ComponentType::Edge:
      return mesh.edgeCount();
    case ComponentType::Face:
      return mesh.faceCount();
    case ComponentType::Uv:
    case ComponentType::VertexFace:
      break;
  }
  return 0;
}

bool isCarried(const Component& members, ComponentType type) {
  return members.type() == type && !members.isComplete();
}

/// Cuts off what a mesh does not have.
std::shared_ptr<const Component> within(const std::shared_ptr<const Component>& members,
                                        Index count) {
  const std::span<const Index> ids = members->indices();
  const auto end = std::lower_bound(ids.begin(), ids.end(), count);
  if (end == ids.end()) return members;
  return std::make_shared<Component>(members->type(), std::vector<Index>(ids.begin(), end));
}

/// Takes the groups of one type along.
void carryType(MeshGroups& groups, ComponentType type, const mesh::Mesh& made,
               const Origins* origins) {
  std::vector<std::size_t> which;
  std::vector<std::span<const Index>> sets;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (!isCarried(*groups[i].members, type)) continue;
    which.push_back(i);
    sets.push_back(groups[i].members->indices());
  }
  if (which.empty()) return;
  if (!origins) {
    for (const std::size_t i : which)
      groups[i].members = within(groups[i].members, countOf(made, type));
    return;
  }
  std::vector<mesh::CarriedIds> carried = mesh::carryIds(*origins, sets);
  for (std::size_t i = 0; i < which.size(); ++i)
    if (!carried[i].same)
      groups[which[i]].members = std::make_shared<Component>(type, std::move(carried[i].ids));
}

}  // namespace

scene::MeshGroupsPtr carriedGroups(const scene::MeshGroupsPtr& groups, const mesh::Mesh& made,
                                   const std::optional<mesh::Provenance>& origin) {
  if (!groups) return groups;
  auto result = std::make_shared<MeshGroups>(*groups);
  carryType(*result, ComponentType::Vertex, made, origin ? &origin->vertices : nullptr);
  carryType(*result, ComponentType::Edge, made, origin ? &origin->edges : nullptr);
  carryType(*result, ComponentType::Face, made, origin ? &origin->faces : nullptr);
  const bool isSame =
      std::equal(groups->begin(), groups->end(), result->begin(), result->end(),
                 [](const MeshGroup& a, const MeshGroup& b) { return a.members == b.members; });
  return isSame ? groups : result;
}

bool hasGroup(const scene::MeshGroupsPtr& groups, std::int64_t id) {
  return groups && std::ranges::any_of(*groups, [&](const auto& each) { return each.id == id; });
}

std::vector<Component> membersOf(const scene::MeshGroupsPtr& groups, std::int64_t id) {
  std::vector<Component> members;
  if (!groups) return members;
  for (const MeshGroup& group : *groups)
    if (group.id == id && !group.members->isEmpty()) members.push_back(*group.members);
  return members;
}

scene::MeshGroupsPtr withGroup(const scene::MeshGroupsPtr& groups, std::int64_t id,
                               std::vector<Component> members) {
  auto result = std::make_shared<MeshGroups>();
  if (groups)
    for (const MeshGroup& group : *groups)
      if (group.id != id) result->push_back(group);
  if (members.empty()) members.emplace_back(ComponentType::Face);
  for (Component& each : members)
    result->push_back({id, std::make_shared<Component>(std::move(each))});
  return result;
}

}  // namespace host::nodes
