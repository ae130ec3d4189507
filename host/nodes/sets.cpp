#include "host/nodes/sets.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "host/nodes/set_group.h"
#include "host/scene/dag_paths.h"

namespace host::nodes {

namespace {

using dg::Node;
using dg::Plug;
using scene::Component;
using scene::DagPath;
using scene::Document;
using scene::SelectionItem;
using scene::SelectionList;

bool isRenderable(Node& set) {
  if (isShadingGroup(set)) return true;
  const auto flag = set.graph().get(set.plug("renderableOnlySet"));
  return flag && dg::equal(*flag, std::int64_t{1});
}

/// Which sets share a partition with one, so that its members may not be theirs as well.
class Exclusive {
 public:
  explicit Exclusive(Node& set) : set_(set) {
    for (const Plug& slot : set.graph().destinations(set.plug("partition")))
      partitions_.push_back(slot.node());
  }
  [[nodiscard]] bool isAny() const { return !partitions_.empty(); }
  [[nodiscard]] bool operator()(Node& other) const {
    if (&other == &set_ || !isSet(other)) return false;
    for (const Plug& slot : other.graph().destinations(other.plug("partition")))
      if (std::find(partitions_.begin(), partitions_.end(), slot.node()) != partitions_.end())
        return true;
    return false;
  }

 private:
  Node& set_;
  std::vector<const Node*> partitions_;
};

/// The items with the transforms that a renderable set cannot take replaced by their shapes.
Result<std::vector<SelectionItem>> membersToBe(Node& set, const SelectionList& items) {
  std::vector<SelectionItem> members;
  const bool renderable = isRenderable(set);
  for (const SelectionItem& item : items.items()) {
    if (item.node.get() == &set) return fail("'{}' cannot be a member of itself", set.name());
    if (!item.plug.isNull())
      return fail("'{}' is an attribute; sets hold objects", item.plug.name());
    if (!item.isDag() && renderable && !isSet(*item.node))
      return fail("'{}' cannot be rendered, which '{}' asks for", item.node->name(), set.name());
    for (const Component& component : item.components)
      if (renderable && component.type() != scene::ComponentType::Face)
        return fail("'{}' takes whole objects and faces", set.name());
    if (!item.isDag() || !renderable || !item.isObject()) {
      members.push_back(item);
      continue;
    }
    for (const DagPath& shape : item.path.shapes()) {
      SelectionItem member;
      member.node = shape.node()->shared_from_this();
      member.path = shape;
      members.push_back(std::move(member));
    }
  }
  return members;
}

Result<void> joinWhole(const Plug& source, Node& set, std::string_view attribute) {
  return set.graph().connect(source, freeElement(set.plug(attribute)));
}

Plug wholeSlotIn(const Plug& source, const Node& set) {
  if (source.isNull()) return {};
  for (const Plug& destination : source.node()->graph().destinations(source))
    if (destination.node() == &set) return destination;
  return {};
}

/// What stands for the item as a whole in connections.
Plug wholePlug(const SelectionItem& item) {
  return item.isDag() ? instanceGroups(item.path) : item.node->plug("message");
}

Result<void> removeItem(Document& document, Node& set, const SelectionItem& item);

/// What of an item's components a group has; whether that is any.
bool sharedPart(const SelectionItem& item, const SetGroup& group, Component& shared) {
  for (const Component& component : item.components)
    for (const Component& member : group.components) {
      if (member.type() != component.type()) continue;
      shared = member;
      shared.intersect(component, scene::componentCount(item.path, component.type()));
      if (!shared.isEmpty()) return true;
    }
  return false;
}

/// Takes an item out of the sets that it may not share with the one it is about to enter.
Result<void> leaveExclusive(Document& document, const SelectionItem& item,
                            const Exclusive& isExclusive, bool force) {
  if (!isExclusive.isAny()) return {};
  const auto leave = [&](Node& other, const std::function<Result<void>()>& take) -> Result<void> {
    if (!force)
      return fail("'{}' is in '{}', which does not share members", scene::itemBaseName(item),
                  other.name());
    return take();
  };
  std::vector<Node*> wholes;
  if (const Plug whole = wholePlug(item))
    for (const Plug& destination : document.graph().destinations(whole))
      if (isExclusive(*destination.node())) wholes.push_back(destination.node());
  for (Node* other : wholes)
    HOST_TRY(leave(*other, [&] { return removeItem(document, *other, item); }));
  if (!item.isDag()) return {};
  // An object may have thousands of groups, so all are read once.
  for (const SetGroup& group : groupsIn(item.path, isExclusive)) {
    if (item.components.empty()) {
      HOST_TRY(leave(*group.set, [&] { return removeGroup(document, group); }));
      continue;
    }
    Component taken;
    if (!sharedPart(item, group, taken)) continue;
    HOST_TRY(leave(*group.set, [&] { return removeFromGroup(document, item.path, group, taken); }));
  }
  return {};
}

Result<void> addItem(Document& document, Node& set, const SelectionItem& item) {
  const Plug whole = wholePlug(item);
  if (whole.isNull()) return fail("'{}' cannot be in a set", scene::itemBaseName(item));
  if (wholeSlotIn(whole, set)) return {};
  if (item.components.empty()) {
    if (!item.isDag()) return joinWhole(whole, set, "dnSetMembers");
    for (const SetGroup& group : groupsOf(item.path, &set)) HOST_TRY(removeGroup(document, group));
    return joinWhole(whole, set, "dagSetMembers");
  }
  for (const Component& component : item.components)
    HOST_TRY(addToGroup(document, item.path, set, component));
  return {};
}

/// Membership as a whole becomes membership of all components but some.
Result<void> shrinkToComponents(Document& document, Node& set, const SelectionItem& item,
                                const Plug& wholeSlot) {
  HOST_TRY(document.graph().disconnect(wholePlug(item), wholeSlot));
  for (const Component& taken : item.components) {
    Component rest = Component::all(taken.type());
    rest.subtract(taken, scene::componentCount(item.path, taken.type()));
    if (!rest.isEmpty()) HOST_TRY(addToGroup(document, item.path, set, rest));
  }
  return {};
}

Result<void> removeItem(Document& document, Node& set, const SelectionItem& item) {
  const Plug whole = wholePlug(item);
  const Plug slot = wholeSlotIn(whole, set);
  if (slot)
    return item.components.empty() ? document.graph().disconnect(whole, slot)
                                   : shrinkToComponents(document, set, item, slot);
  if (!item.isDag()) return {};
  for (const SetGroup& group : groupsOf(item.path, &set)) {
    if (item.components.empty()) {
      HOST_TRY(removeGroup(document, group));
      continue;
    }
    for (const Component& component : item.components)
      HOST_TRY(removeFromGroup(document, item.path, group, component));
  }
  return {};
}

}  // namespace

bool isSet(const Node& node) {
  return node.type().isA("objectSet");
}
bool isShadingGroup(const Node& node) {
  return node.type().isA("shadingEngine");
}

Result<void> addToSet(Document& document, Node& set, const SelectionList& items, bool force) {
  const auto members = membersToBe(set, items);
  if (!members) return failWith(members.error());
  const Exclusive exclusive(set);
  for (const SelectionItem& item : *members) {
    HOST_TRY(leaveExclusive(document, item, exclusive, force));
    HOST_TRY(addItem(document, set, item));
  }
  return {};
}

Result<void> removeFromSet(Document& document, Node& set, const SelectionList& items) {
  for (const SelectionItem& item : items.items()) {
    HOST_TRY(removeItem(document, set, item));
    if (!isRenderable(set) || !item.isDag() || !item.isObject()) continue;
    for (const DagPath& shape : item.path.shapes()) {
      SelectionItem member;
      member.node = shape.node()->shared_from_this();
      member.path = shape;
      HOST_TRY(removeItem(document, set, member));
    }
  }
  return {};
}

Result<void> clearSet(Document& document, Node& set) {
  return removeFromSet(document, set, setMembers(set));
}

SelectionList setMembers(Node& set) {
  SelectionList members;
  for (const dg::Graph::Connection& each : set.graph().incoming(set)) {
    const std::string& slot = each.destination.attribute()->longName;
    Node& node = *each.source.node();
    if (slot == "dnSetMembers") members.add(node.shared_from_this());
    if (slot != "dagSetMembers") continue;
    const DagPath path = scene::pathAt(node, static_cast<std::uint64_t>(each.source.index(0)));
    if (path.isWorld()) continue;
    if (each.source.attribute()->longName != "objectGroups") {
      members.add(path);
      continue;
    }
    for (const Component& component : groupAt(each.source).components) members.add(path, component);
  }
  return members;
}

bool isSetMember(Node& set, const SelectionItem& item) {
  if (wholeSlotIn(wholePlug(item), set)) return true;
  if (item.components.empty() || !item.isDag()) return false;
  for (Component component : item.components) {
    for (const SetGroup& group : groupsOf(item.path, &set))
      for (const Component& in : group.components)
        if (in.type() == component.type())
          component.subtract(in, scene::componentCount(item.path, component.type()));
    if (!component.isEmpty()) return false;
  }
  return true;
}

std::vector<Node*> setsOf(Document& document, const SelectionItem& item) {
  std::vector<Node*> sets;
  const auto add = [&](Node* set) {
    if (set && isSet(*set) && std::find(sets.begin(), sets.end(), set) == sets.end())
      sets.push_back(set);
  };
  if (const Plug whole = wholePlug(item))
    for (const Plug& destination : document.graph().destinations(whole))
      if (destination.attribute()->longName != "usedBy") add(destination.node());
  if (item.isDag())
    for (const SetGroup& group : groupsOf(item.path, nullptr)) add(group.set);
  return sets;
}

Result<void> assignInitialShading(Document& document, Node& shape) {
  const std::vector<Node*>& found = document.nodesNamed("initialShadingGroup");
  if (found.empty()) return {};
  SelectionList paths;
  for (const DagPath& path : scene::allPaths(shape)) paths.add(path);
  return addToSet(document, *found.front(), paths);
}

}  // namespace host::nodes
