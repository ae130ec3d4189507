#include "host/nodes/set_group.h"

#include <algorithm>
#include <memory>

#include "host/nodes/history/group_carry.h"

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
  HOST_TRY(storeOnShape(group, {component}));
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

namespace {

Node* setOfGroup(const Plug& group) {
  Node* set = nullptr;
  for (const Plug& destination : group.node()->graph().destinations(group))
    if (destination.attribute()->longName == "dagSetMembers") set = destination.node();
  return set;
}

}  // namespace

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

std::vector<SetGroup> groupsOf(const DagPath& path, const Node* set) {
  std::vector<SetGroup> groups;
  const Plug array = groupArray(path);
  if (array.isNull()) return groups;
  for (const Index index : path.node()->graph().elementIndices(array)) {
    const Plug element = array.element(index);
    // Who is in a group is read only of those that are asked for: there may be thousands.
    if (set && setOfGroup(element) != set) continue;
    SetGroup group = groupAt(element);
    if (group.set) groups.push_back(std::move(group));
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
  Plug end = source;
  for (const Index instance : graph.elementIndices(instances)) {
    const Plug groups = childNamed(instances.element(instance), "objectGroups");
    for (const Index index : graph.elementIndices(groups)) {
      const Plug group = groups.element(index);
      std::vector<Component> members = storedComponents(group);
      const std::int64_t number = groupNumber(group);
      if (members.empty() || number < 0 || hasGroup(present, number)) continue;
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
  for (const Index instance : graph.elementIndices(instances)) {
    const Plug groups = childNamed(instances.element(instance), "objectGroups");
    for (const Index index : graph.elementIndices(groups)) {
      const Plug group = groups.element(index);
      const std::int64_t number = groupNumber(group);
      if (!hasGroup(arriving, number)) continue;
      std::vector<Component> members = membersOf(arriving, number);
      if (members != storedComponents(group)) HOST_TRY(storeOnShape(group, std::move(members)));
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
