#include "host/nodes/set_group.h"

#include <algorithm>
#include <memory>

namespace host::nodes {

namespace {

using dg::Node;
using dg::Plug;
using scene::Component;
using scene::ComponentListData;
using scene::DagPath;
using scene::Document;

Plug childNamed(const Plug& compound, std::string_view name) {
  for (const dg::AttributePtr& child : compound.attribute()->children)
    if (child->longName == name) return compound.child(child.get());
  return {};
}

Plug groupArray(const DagPath& path) {
  const Plug instance = instanceGroups(path);
  return instance.isNull() ? instance : childNamed(instance, "objectGroups");
}

Result<void> storeComponents(const Plug& group, std::vector<Component> components) {
  return group.node()->graph().set(
      childNamed(group, "objectGrpCompList"),
      dg::DataPtr(std::make_shared<ComponentListData>(std::move(components))));
}

/// Numbers groups through: one above the highest there is.
std::int64_t nextGroupId(const Document& document) {
  std::int64_t highest = 0;
  for (const dg::NodePtr& node : document.graph().nodes()) {
    if (node->type().name != "groupId") continue;
    const dg::Value id = document.graph().stored(node->plug("groupId"));
    if (const auto* number = std::get_if<std::int64_t>(&id)) highest = std::max(highest, *number);
  }
  return highest + 1;
}

Result<void> makeGroup(Document& document, const Plug& group, Node& set,
                       const Component& component) {
  dg::Graph& graph = document.graph();
  const auto id = document.createNode("groupId");
  if (!id) return failWith(id.error());
  HOST_TRY(graph.set((*id)->plug("groupId"), nextGroupId(document)));
  HOST_TRY(storeComponents(group, {component}));
  HOST_TRY(graph.connect((*id)->plug("groupId"), childNamed(group, "objectGroupId")));
  HOST_TRY(graph.connect(set.plug("memberWireframeColor"), childNamed(group, "objectGrpColor")));
  const Plug members = set.plug("dagSetMembers"), groups = set.plug("groupNodes");
  HOST_TRY(graph.connect(group, freeElement(members)));
  return graph.connect((*id)->plug("message"), freeElement(groups));
}

}  // namespace

Plug freeElement(const Plug& array) {
  dg::Graph& graph = array.node()->graph();
  const Plug next = array.element(graph.elementCount(array));
  return graph.elementExists(next) ? array.element(graph.nextFreeIndex(array)) : next;
}

Plug instanceGroups(const DagPath& path) {
  const Plug groups = path.node()->plug("instObjGroups");
  return groups.isNull() ? groups : groups.element(static_cast<Index>(path.instanceNumber()));
}

SetGroup groupAt(const Plug& group) {
  SetGroup result;
  result.plug = group;
  dg::Graph& graph = group.node()->graph();
  for (const Plug& destination : graph.destinations(group))
    if (destination.attribute()->longName == "dagSetMembers") result.set = destination.node();
  const auto value = graph.get(childNamed(group, "objectGrpCompList"));
  if (const auto* list = value ? dg::dataAs<ComponentListData>(*value) : nullptr)
    result.components = list->value;
  return result;
}

std::vector<SetGroup> groupsOf(const DagPath& path, const Node* set) {
  std::vector<SetGroup> groups;
  const Plug array = groupArray(path);
  if (array.isNull()) return groups;
  for (const Index index : path.node()->graph().elementIndices(array)) {
    SetGroup group = groupAt(array.element(index));
    if (group.set && (!set || group.set == set)) groups.push_back(std::move(group));
  }
  return groups;
}

Result<void> addToGroup(Document& document, const DagPath& path, Node& set,
                        const Component& component) {
  for (SetGroup& group : groupsOf(path, &set)) {
    for (Component& each : group.components) {
      if (each.type() != component.type()) continue;
      each.unite(component);
      return storeComponents(group.plug, std::move(group.components));
    }
  }
  const Plug array = groupArray(path);
  if (array.isNull())
    return fail("'{}' has no components that a set could hold", path.partialName());
  return makeGroup(document, freeElement(array), set, component);
}

Result<void> removeFromGroup(Document& document, const DagPath& path, const SetGroup& group,
                             const Component& component) {
  std::vector<Component> rest = group.components;
  for (Component& each : rest)
    if (each.type() == component.type())
      each.subtract(component, scene::componentCount(path, component.type()));
  if (rest == group.components) return {};
  std::erase_if(rest, [](const Component& each) { return each.isEmpty(); });
  return rest.empty() ? removeGroup(document, group) : storeComponents(group.plug, std::move(rest));
}

Result<void> removeGroup(Document& document, const SetGroup& group) {
  dg::Graph& graph = document.graph();
  const Plug id = graph.source(childNamed(group.plug, "objectGroupId"));
  HOST_TRY(graph.removeElement(group.plug, true));
  if (id.isNull() || !graph.destinations(id).empty() || id.node()->isLocked() ||
      id.node()->isDefault())
    return {};
  return document.deleteNodes({id.node()});
}

}  // namespace host::nodes
