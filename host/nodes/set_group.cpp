#include "host/nodes/set_group.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

#include "host/nodes/history/group_carry.h"
#include "host/nodes/sets.h"

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

/// The number of a group: what connects it with the meshes in its history.
std::int64_t groupNumber(const Plug& group) {
  const auto value = group.node()->graph().get(childNamed(group, "objectGroupId"));
  const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return number ? *number : -1;
}

/// The groups of the mesh that arrives at a plug; none when nothing is connected to it.
scene::MeshGroupsPtr groupsArriving(const Plug& mesh) {
  if (!mesh) return nullptr;
  dg::Graph& graph = mesh.node()->graph();
  if (graph.source(mesh).isNull()) return nullptr;
  const auto value = graph.get(mesh);
  const auto* data = value ? dg::dataAs<scene::MeshData>(*value) : nullptr;
  return data ? data->groups : nullptr;
}

std::vector<Component> storedComponents(const Plug& group) {
  const auto value = group.node()->graph().get(childNamed(group, "objectGrpCompList"));
  const auto* list = value ? dg::dataAs<ComponentListData>(*value) : nullptr;
  return list ? list->value : std::vector<Component>();
}

dg::Value listValue(std::vector<Component> components) {
  return dg::DataPtr(std::make_shared<ComponentListData>(std::move(components)));
}

/// What is in `a` and not in `b`, of one mesh.
std::vector<Component> difference(const std::vector<Component>& a, const std::vector<Component>& b,
                                  const mesh::Mesh& mesh) {
  const auto count = [&](scene::ComponentType type) {
    return type == scene::ComponentType::Vertex ? mesh.vertexCount()
           : type == scene::ComponentType::Edge ? mesh.edgeCount()
                                                : mesh.faceCount();
  };
  std::vector<Component> rest;
  for (Component each : a) {
    for (const Component& other : b)
      if (other.type() == each.type()) each.subtract(other, count(each.type()));
    if (!each.isEmpty()) rest.push_back(std::move(each));
  }
  return rest;
}

/// What comes with a mesh, by the numbers of its groups: there may be thousands of them. Lives as
/// long as these groups.
using GroupTable = std::unordered_map<std::int64_t, std::vector<const Component*>>;
GroupTable tableOf(const scene::MeshGroupsPtr& groups) {
  GroupTable table;
  if (!groups) return table;
  for (const scene::MeshGroup& group : *groups) {
    std::vector<const Component*>& members = table[group.id];
    if (!group.members->isEmpty()) members.push_back(group.members.get());
  }
  return table;
}

std::vector<Component> copied(const std::vector<const Component*>& members) {
  std::vector<Component> copies;
  for (const Component* each : members) copies.push_back(*each);
  return copies;
}

/// A groupParts node of a group that takes the mesh at `source`.
Result<Node*> makeParts(Document& document, const Plug& group, const Plug& source) {
  dg::Graph& graph = document.graph();
  const auto made = document.createNode("groupParts");
  if (!made) return failWith(made.error());
  HOST_TRY(graph.connect(source, (*made)->plug("inputGeometry")));
  const Plug id = graph.source(childNamed(group, "objectGroupId"));
  if (id)
    HOST_TRY(graph.connect(id, (*made)->plug("groupId")));
  else
    HOST_TRY(graph.set((*made)->plug("groupId"), groupNumber(group)));
  return made->get();
}

/// The node right in front of a shape that can say who is in a group there; made where none is.
Result<Node*> lastParts(Document& document, const Plug& group) {
  dg::Graph& graph = document.graph();
  const Plug inMesh = group.node()->plug("inMesh");
  const std::int64_t number = groupNumber(group);
  Plug source = graph.source(inMesh);
  while (source && source.node()->type().name == "groupParts") {
    Node* node = source.node();
    const auto id = graph.get(node->plug("groupId"));
    if (id && dg::equal(*id, number)) return node;
    source = graph.source(node->plug("inputGeometry"));
  }
  source = graph.source(inMesh);
  HOST_TRY(graph.disconnect(source, inMesh));
  auto parts = makeParts(document, group, source);
  if (!parts) return parts;
  HOST_TRY(graph.connect((*parts)->plug("outputGeometry"), inMesh));
  return parts;
}

/// Changes who is in a group that comes through the history: from its last node on.
Result<void> changeInHistory(Document& document, const Plug& group,
                             const std::vector<Component>& components) {
  const auto parts = lastParts(document, group);
  if (!parts) return failWith(parts.error());
  dg::Graph& graph = document.graph();
  const auto arriving = graph.get((*parts)->plug("inputGeometry"));
  const auto* data = arriving ? dg::dataAs<scene::MeshData>(*arriving) : nullptr;
  if (!data) return fail("the history of '{}' gives no mesh", group.node()->name());
  const std::vector<Component> before = membersOf(data->groups, groupNumber(group));
  HOST_TRY(graph.set((*parts)->plug("inputComponents"),
                     listValue(difference(components, before, data->mesh))));
  return graph.set((*parts)->plug("inputRemoveComponent"),
                   listValue(difference(before, components, data->mesh)));
}

Result<void> storeOnShape(const Plug& group, std::vector<Component> components) {
  return group.node()->graph().set(childNamed(group, "objectGrpCompList"),
                                   listValue(std::move(components)));
}

Result<void> storeComponents(Document& document, const Plug& group,
                             std::vector<Component> components) {
  if (hasGroup(groupsArriving(group.node()->plug("inMesh")), groupNumber(group)))
    HOST_TRY(changeInHistory(document, group, components));
  return storeOnShape(group, std::move(components));
}

/// Numbers groups through: one above the highest there is.
std::int64_t nextGroupId(const Document& document) {
  std::int64_t highest = 0;
  const dg::NodeType* type = nullptr;  // of groupId nodes, once one is found
  for (const dg::NodePtr& node : document.graph().nodes()) {
    if (type ? &node->type() != type : node->type().name != "groupId") continue;
    type = &node->type();
    const dg::Value id = document.graph().stored(node->plug("groupId"));
    if (const auto* number = std::get_if<std::int64_t>(&id)) highest = std::max(highest, *number);
  }
  return highest + 1;
}

/// A groupId node that gives a group its number, and the group in the set.
Result<void> enterSet(Document& document, const Plug& group, Node& set, std::int64_t number) {
  dg::Graph& graph = document.graph();
  const auto id = document.createNode("groupId");
  if (!id) return failWith(id.error());
  HOST_TRY(graph.set((*id)->plug("groupId"), number));
  HOST_TRY(graph.connect((*id)->plug("groupId"), childNamed(group, "objectGroupId")));
  HOST_TRY(graph.connect(set.plug("memberWireframeColor"), childNamed(group, "objectGrpColor")));
  const Plug members = set.plug("dagSetMembers"), groups = set.plug("groupNodes");
  HOST_TRY(graph.connect(group, freeElement(members)));
  return graph.connect((*id)->plug("message"), freeElement(groups));
}

Node* setOfGroup(const Plug& group) {
  Node* set = nullptr;
  for (const Plug& destination : group.node()->graph().destinations(group))
    if (destination.attribute()->longName == "dagSetMembers") set = destination.node();
  return set;
}

/// A group with its members, where the groups that come with the mesh are known already.
SetGroup readGroup(const Plug& group, Node* set, const GroupTable& arriving) {
  const auto found = arriving.empty() ? arriving.end() : arriving.find(groupNumber(group));
  return {group, set, found != arriving.end() ? copied(found->second) : storedComponents(group)};
}

/// The groups of an instance that are in a set, found from the side that has fewer to look through.
std::vector<SetGroup> groupsInSet(const Plug& array, Node& set) {
  dg::Graph& graph = array.node()->graph();
  std::vector<Plug> found;
  const Plug members = set.plug("dagSetMembers");
  if (members && graph.elementCount(members) < graph.elementCount(array)) {
    for (const Index index : graph.elementIndices(members))
      if (const Plug source = graph.source(members.element(index));
          source && source.attribute() == array.attribute() && source.array() == array)
        found.push_back(source);
    std::sort(found.begin(), found.end(),
              [](const Plug& a, const Plug& b) { return a.logicalIndex() < b.logicalIndex(); });
  } else {
    for (const Index index : graph.elementIndices(array))
      if (const Plug element = array.element(index); setOfGroup(element) == &set)
        found.push_back(element);
  }
  std::vector<SetGroup> groups;
  if (found.empty()) return groups;
  const scene::MeshGroupsPtr coming = groupsArriving(array.node()->plug("inMesh"));
  const GroupTable arriving = tableOf(coming);
  for (const Plug& each : found) groups.push_back(readGroup(each, &set, arriving));
  return groups;
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
  result.set = setOfGroup(group);
  const scene::MeshGroupsPtr arriving = groupsArriving(group.node()->plug("inMesh"));
  const std::int64_t number = arriving ? groupNumber(group) : -1;
  result.components =
      hasGroup(arriving, number) ? membersOf(arriving, number) : storedComponents(group);
  return result;
}

std::vector<SetGroup> groupsOf(const DagPath& path, Node* set) {
  if (!set) return groupsIn(path, [](Node&) { return true; });
  const Plug array = groupArray(path);
  return array.isNull() ? std::vector<SetGroup>() : groupsInSet(array, *set);
}

std::vector<SetGroup> groupsIn(const DagPath& path, const std::function<bool(Node&)>& isWanted) {
  std::vector<SetGroup> groups;
  const Plug array = groupArray(path);
  if (array.isNull()) return groups;
  const std::vector<Index> indices = path.node()->graph().elementIndices(array);
  if (indices.empty()) return groups;
  const scene::MeshGroupsPtr coming = groupsArriving(path.node()->plug("inMesh"));
  const GroupTable arriving = tableOf(coming);
  for (const Index index : indices) {
    const Plug element = array.element(index);
    Node* set = setOfGroup(element);
    if (set && isWanted(*set)) groups.push_back(readGroup(element, set, arriving));
  }
  return groups;
}

Result<void> addToGroup(Document& document, const DagPath& path, Node& set,
                        const Component& component) {
  for (SetGroup& group : groupsOf(path, &set)) {
    for (Component& each : group.components) {
      if (each.type() != component.type()) continue;
      each.unite(component);
      return storeComponents(document, group.plug, std::move(group.components));
    }
  }
  const Plug array = groupArray(path);
  if (array.isNull())
    return fail("'{}' has no components that a set could hold", path.partialName());
  const Plug group = freeElement(array);
  HOST_TRY(storeOnShape(group, {component}));
  return enterSet(document, group, set, nextGroupId(document));
}

Result<void> makeGroups(Document& document, const DagPath& path, std::span<const SetPart> parts) {
  const Plug array = groupArray(path);
  if (array.isNull())
    return fail("'{}' has no components that a set could hold", path.partialName());
  HOST_ASSERT(document.graph().elementCount(array) == 0, "only of a shape that has no groups");
  // All elements first: one that is made while others are connected tells all of these.
  for (std::size_t i = 0; i < parts.size(); ++i)
    HOST_TRY(storeOnShape(array.element(static_cast<Index>(i)), {parts[i].components}));
  std::int64_t number = nextGroupId(document);
  for (std::size_t i = 0; i < parts.size(); ++i)
    HOST_TRY(enterSet(document, array.element(static_cast<Index>(i)), *parts[i].set, number++));
  return {};
}

Result<void> removeFromGroup(Document& document, const DagPath& path, const SetGroup& group,
                             const Component& component) {
  std::vector<Component> rest = group.components;
  for (Component& each : rest)
    if (each.type() == component.type())
      each.subtract(component, scene::componentCount(path, component.type()));
  if (rest == group.components) return {};
  std::erase_if(rest, [](const Component& each) { return each.isEmpty(); });
  return rest.empty() ? removeGroup(document, group)
                      : storeComponents(document, group.plug, std::move(rest));
}

Result<Plug> bringGroups(Document& document, Node& shape, const Plug& source) {
  dg::Graph& graph = document.graph();
  const Plug instances = shape.plug("instObjGroups");
  if (instances.isNull()) return source;
  scene::MeshGroupsPtr present;
  if (const auto value = graph.get(source))
    if (const auto* data = dg::dataAs<scene::MeshData>(*value)) present = data->groups;
  const GroupTable known = tableOf(present);
  Plug end = source;
  for (const Index instance : graph.elementIndices(instances)) {
    const Plug groups = childNamed(instances.element(instance), "objectGroups");
    for (const Index index : graph.elementIndices(groups)) {
      const Plug group = groups.element(index);
      std::vector<Component> members = storedComponents(group);
      const std::int64_t number = groupNumber(group);
      if (members.empty() || number < 0 || known.contains(number)) continue;
      const auto parts = makeParts(document, group, end);
      if (!parts) return failWith(parts.error());
      HOST_TRY(graph.set((*parts)->plug("inputComponents"), listValue(std::move(members))));
      end = (*parts)->plug("outputGeometry");
    }
  }
  return end;
}

Node* shadingGroupOfWhole(const DagPath& path) {
  const Plug whole = instanceGroups(path);
  if (!whole) return nullptr;
  for (const Plug& destination : whole.node()->graph().destinations(whole))
    if (destination.attribute()->longName == "dagSetMembers" &&
        destination.node()->type().isA("shadingEngine"))
      return destination.node();
  return nullptr;
}

DagPath shadedPlace(const DagPath& path) {
  if (path.instanceNumber() == 0 || shadingGroupOfWhole(path)) return path;
  for (const SetGroup& group : groupsOf(path, nullptr))
    if (isShadingGroup(*group.set)) return path;
  return scene::firstPath(*path.node());
}

Result<Plug> bringAllGroups(Document& document, const DagPath& path, const Plug& source,
                            bool withWhole, std::vector<ComingGroup>& groups) {
  dg::Graph& graph = document.graph();
  const auto brought = bringGroups(document, *path.node(), source);
  if (!brought) return brought;
  for (const SetGroup& group : groupsOf(path, nullptr))
    if (const Plug id = graph.source(childNamed(group.plug, "objectGroupId")))
      groups.push_back({id, group.set});
  Node* whole = withWhole ? shadingGroupOfWhole(path) : nullptr;
  if (!whole) return brought;
  const auto id = document.createNode("groupId");
  if (!id) return failWith(id.error());
  HOST_TRY(graph.set((*id)->plug("groupId"), nextGroupId(document)));
  const auto parts = document.createNode("groupParts");
  if (!parts) return failWith(parts.error());
  HOST_TRY(graph.connect(*brought, (*parts)->plug("inputGeometry")));
  HOST_TRY(graph.connect((*id)->plug("groupId"), (*parts)->plug("groupId")));
  HOST_TRY(graph.set((*parts)->plug("inputComponents"),
                     listValue({Component::all(scene::ComponentType::Face)})));
  groups.push_back({(*id)->plug("groupId"), whole});
  return (*parts)->plug("outputGeometry");
}

Result<void> joinGroups(Document& document, Node& shape, const std::vector<ComingGroup>& groups) {
  dg::Graph& graph = document.graph();
  const Plug array = groupArray(scene::firstPath(shape));
  for (const ComingGroup& coming : groups) {
    const Plug group = freeElement(array);
    HOST_TRY(graph.connect(coming.id, childNamed(group, "objectGroupId")));
    HOST_TRY(graph.connect(coming.set->plug("memberWireframeColor"),
                           childNamed(group, "objectGrpColor")));
    HOST_TRY(graph.connect(group, freeElement(coming.set->plug("dagSetMembers"))));
    const Plug message = coming.id.node()->plug("message");
    bool isKnown = false;
    for (const Plug& destination : graph.destinations(message))
      isKnown |= destination.node() == coming.set;
    if (!isKnown) HOST_TRY(graph.connect(message, freeElement(coming.set->plug("groupNodes"))));
  }
  return {};
}

Result<void> bakeGroups(Node& shape) {
  dg::Graph& graph = shape.graph();
  const Plug instances = shape.plug("instObjGroups");
  const scene::MeshGroupsPtr arriving = groupsArriving(shape.plug("inMesh"));
  if (instances.isNull() || !arriving) return {};
  const GroupTable members = tableOf(arriving);
  for (const Index instance : graph.elementIndices(instances)) {
    const Plug groups = childNamed(instances.element(instance), "objectGroups");
    for (const Index index : graph.elementIndices(groups)) {
      const Plug group = groups.element(index);
      const auto found = members.find(groupNumber(group));
      if (found == members.end()) continue;
      std::vector<Component> now = copied(found->second);
      if (now != storedComponents(group)) HOST_TRY(storeOnShape(group, std::move(now)));
    }
  }
  return {};
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
