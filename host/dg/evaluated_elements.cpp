#include "host/dg/evaluated_elements.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// The arrays of a node that have such elements. The plugs are only looked at while the node is
/// held.
struct Noted {
  std::weak_ptr<Node> node;
  std::vector<Plug> arrays;
  bool isChanged = false;  ///< stands in the list of those that changed
};

struct AllNoted {
  std::unordered_map<const Node*, Noted> nodes;
  std::vector<const Node*> changed;  ///< since elements were dropped last
  std::size_t purgeAt = 64;
};
AllNoted& noted() {
  // Never destroyed: nodes may outlive whatever ends with the program.
  static AllNoted& all = *new AllNoted;
  return all;
}

bool anySlot(const Node& node, bool (*is)(const Slot&)) {
  bool found = false;
  for (const auto& top : NodeAccess::slots(node))
    if (top && !found) visitSlots(*top, [&](const Slot& slot) { found = found || is(slot); });
  return found;
}

bool hasDirtyOutput(const Node& node) {
  return anySlot(node, [](const Slot& slot) {
    return slot.isDirty && slot.node->type().isComputed(slot.attribute);
  });
}

bool isEvaluated(const std::unique_ptr<Slot>& element) {
  return element->isEvaluated && !isWired(*element);
}

bool isWiredAt(const Slot& array, Index index) {
  const Slot* element = findElement(array, index);
  return element && isWired(*element);
}

bool hasEvaluated(const Slot& array) {
  if (array.packed) return !array.packed->evaluated.empty();
  return std::ranges::any_of(array.below, &Slot::isEvaluated, &std::unique_ptr<Slot>::operator*);
}

/// Whether some of the elements stay.
bool drop(const Plug& array) {
  Slot* slot = locate(array).slot;
  if (!slot) return false;
  const bool isComputed = array.node()->type().isComputed(array.attribute());
  const bool isStale = isComputed ? slot->isDirty : hasDirtyOutput(*array.node());
  if (!isStale) return hasEvaluated(*slot);
  if (slot->packed) {
    std::vector<Index> gone = slot->packed->evaluated;
    std::erase_if(gone, [&](Index index) { return isWiredAt(*slot, index); });
    slot->packed->erase(gone);
    matchSlotsToPacked(*slot);
    return hasEvaluated(*slot);
  }
  slot->isAwaited = isComputed && std::ranges::any_of(slot->below, isEvaluated);
  std::erase_if(slot->below, isEvaluated);
  return hasEvaluated(*slot);
}

void list(const Node* node, Noted& its) {
  if (std::exchange(its.isChanged, true)) return;
  noted().changed.push_back(node);
}

Noted& notedOf(Node& node) {
  AllNoted& all = noted();
  // Nobody need ever undo: what scenes that are gone left goes before the table grows.
  if (all.nodes.size() >= all.purgeAt) {
    std::erase_if(all.nodes, [](const auto& each) { return each.second.node.expired(); });
    std::erase_if(all.changed, [&](const Node* each) { return !all.nodes.contains(each); });
    all.purgeAt = std::max<std::size_t>(64, 2 * all.nodes.size());
  }
  Noted& its = all.nodes[&node];
  if (its.node.expired()) {  // new, or another node had the address
    its.node = node.shared_from_this();
    its.arrays.clear();
  }
  return its;
}

}  // namespace

void noteEvaluatedElement(const Plug& element) {
  if (element.attribute()->top().worldSpace || element.attribute()->worldSpace) return;
  const Plug array = element.array();
  Slot* whole = locate(array).slot;
  if (whole && whole->packed) {
    std::vector<Index>& known = whole->packed->evaluated;
    const Index index = element.logicalIndex();
    const auto at = std::ranges::lower_bound(known, index);
    if (at == known.end() || *at != index) known.insert(at, index);
  } else if (Slot* slot = locate(element).slot) {
    slot->isEvaluated = true;
  } else {
    return;
  }
  if (array.levels() > 1) return;  // goes with the element above
  Noted& its = notedOf(*array.node());
  list(array.node(), its);
  if (std::ranges::find(its.arrays, array) == its.arrays.end()) its.arrays.push_back(array);
}

void noteChange(const Node& node) {
  AllNoted& all = noted();
  if (all.nodes.empty()) return;
  if (const auto its = all.nodes.find(&node); its != all.nodes.end()) list(&node, its->second);
}

void dropEvaluatedElements() {
  AllNoted& all = noted();
  for (const Node* changed : std::exchange(all.changed, {})) {
    const auto its = all.nodes.find(changed);
    if (its == all.nodes.end()) continue;
    its->second.isChanged = false;
    const NodePtr node = its->second.node.lock();
    // What was deleted may come back with what it has, and then counts as changed.
    if (node && !node->isAlive()) continue;
    if (node)
      std::erase_if(its->second.arrays,
                    [](const Plug& array) { return !checkPlug(array) || !drop(array); });
    if (!node || its->second.arrays.empty()) all.nodes.erase(its);
  }
}

bool takeAwaited(Slot& array) {
  if (!array.isAwaited) return false;
  if (anySlot(*array.node, [](const Slot& slot) { return slot.isEvaluating; })) return false;
  array.isAwaited = false;
  return true;
}

int adoptEvaluated(const Plug& plug) {
  if (plug.node()->type().isComputed(plug.attribute())) return -1;
  int first = -1;
  for (int level = plug.levels() - 1; level >= 0; --level) {
    const Plug element = elementAtLevel(plug, level);
    if (!element.isElement()) continue;
    if (Slot* array = locate(element.array()).slot; array && array->packed) {
      if (std::erase(array->packed->evaluated, element.logicalIndex()) > 0) first = level;
    } else if (Slot* slot = locate(element).slot; slot && std::exchange(slot->isEvaluated, false)) {
      first = level;
    }
  }
  return first;
}

std::vector<Index> ownIndices(const Slot& array) {
  std::vector<Index> indices;
  if (array.packed) {
    indices = array.packed->indices;
    if (array.packed->evaluated.empty()) return indices;
    std::erase_if(indices, [&](Index index) {
      return std::ranges::binary_search(array.packed->evaluated, index) && !isWiredAt(array, index);
    });
    return indices;
  }
  for (const auto& element : array.below)
    if (!isEvaluated(element)) indices.push_back(element->index);
  return indices;
}

}  // namespace host::dg
