#include "host/dg/evaluated_elements.h"

#include <algorithm>
#include <utility>

#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// An array with such elements. The plug is only looked at while the node is held.
struct Noted {
  std::weak_ptr<Node> node;
  Plug array;
};
std::vector<Noted>& noted() {
  // Never destroyed: nodes may outlive whatever ends with the program.
  static std::vector<Noted>& all = *new std::vector<Noted>;
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

/// Whether some of the elements stay.
bool drop(const Plug& array) {
  Slot* slot = locate(array).slot;
  if (!slot || slot->packed) return false;
  const bool isComputed = array.node()->type().isComputed(array.attribute());
  const bool isStale = isComputed ? slot->isDirty : hasDirtyOutput(*array.node());
  if (!isStale)
    return std::ranges::any_of(slot->below, &Slot::isEvaluated, &std::unique_ptr<Slot>::operator*);
  slot->isAwaited = isComputed && std::ranges::any_of(slot->below, isEvaluated);
  std::erase_if(slot->below, isEvaluated);
  return std::ranges::any_of(slot->below, &Slot::isEvaluated, &std::unique_ptr<Slot>::operator*);
}

}  // namespace

void noteEvaluatedElement(const Plug& element) {
  if (element.attribute()->top().worldSpace || element.attribute()->worldSpace) return;
  Slot* slot = locate(element).slot;
  if (!slot) return;
  slot->isEvaluated = true;
  const Plug array = element.array();
  if (array.levels() > 1) return;  // goes with the element above
  if (!noted().empty() && noted().back().array == array && !noted().back().node.expired()) return;
  // Nobody need ever undo: what scenes that are gone left goes before the list grows.
  if (noted().size() == noted().capacity())
    std::erase_if(noted(), [](const Noted& each) { return each.node.expired(); });
  noted().push_back({array.node()->shared_from_this(), array});
}

void dropEvaluatedElements() {
  std::vector<Noted> kept;
  for (Noted& each : std::exchange(noted(), {})) {
    const NodePtr node = each.node.lock();
    if (!node) continue;
    // What was deleted may come back with what it has.
    if (!node->isAlive() || (checkPlug(each.array) && drop(each.array)))
      kept.push_back(std::move(each));
  }
  noted().insert(noted().begin(), std::make_move_iterator(kept.begin()),
                 std::make_move_iterator(kept.end()));
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
    Slot* element = locate(elementAtLevel(plug, level)).slot;
    if (element && std::exchange(element->isEvaluated, false)) first = level;
  }
  return first;
}

}  // namespace host::dg
