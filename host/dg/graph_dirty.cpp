#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// Sets the marks on a slot and all below; whether any was not set.
bool markBelow(Slot& slot) {
  bool isChanged = false;
  if ((slot.isLeaf() || slot.isArray) && !slot.isDirty) slot.isDirty = isChanged = true;
  for (const auto& below : slot.below)
    if (below && markBelow(*below)) isChanged = true;
  return isChanged;
}

/// Visits all slots that an attribute has on a node, over all elements of the arrays above it.
template <class Visit>
void visitInstances(Slot& slot, const Attribute* const* way, std::size_t steps,
                    const Visit& visit) {
  if (steps == 1) {
    visit(slot);
  } else if (slot.isArray) {
    for (const auto& element : slot.below) visitInstances(*element, way, steps, visit);
  } else {
    const auto child = static_cast<std::size_t>(way[1]->childIndex);
    if (child < slot.below.size() && slot.below[child])
      visitInstances(*slot.below[child], way + 1, steps - 1, visit);
  }
}

template <class Visit>
void visitInstances(Node& node, const Attribute& attribute, const Visit& visit) {
  const auto& slots = NodeAccess::slots(node);
  const auto top = static_cast<std::size_t>(attribute.topIndex);
  if (top >= slots.size() || !slots[top]) return;
  if (!attribute.parent) {
    visit(*slots[top]);
    return;
  }
  std::vector<const Attribute*> way;
  for (const Attribute* each = &attribute; each; each = each->parent) way.insert(way.begin(), each);
  visitInstances(*slots[top], way.data(), way.size(), visit);
}

/// Makes the slots of all leaves of a plug that exists, so that they can carry a mark.
void makeLeaves(const Plug& plug) {
  if (plug.isCompound())
    for (const AttributePtr& child : plug.attribute()->children)
      makeLeaves(plug.child(child.get()));
  else
    makeSlot(plug, true);
}

}  // namespace

void Graph::Impl::mark(Slot& slot, bool isReachDone, std::vector<DirtyStep>& work) {
  if (!markBelow(slot)) return;
  noteChange(*slot.node);
  for (Slot* above = slot.parent; above; above = above->parent)
    if (above->isArray && above->node->type().isComputed(above->attribute)) above->isDirty = true;
  const Plug plug = plugOf(slot);
  if (!observers.empty()) marked.push_back(plug);
  work.push_back({plug, isReachDone});
}

void Graph::Impl::askHooks(const Plug& plug, std::vector<DirtyStep>& work) {
  std::vector<Plug> also;
  for (const NodeType* type = &plug.node()->type(); type; type = type->base)
    if (type->dependentsDirty) type->dependentsDirty(*plug.node(), plug, also);
  for (const Plug& each : also) {
    if (!checkPlug(each)) continue;
    Place place = locate(each);
    if (place.isMissing) continue;
    if (!place.slot || place.slot->below.empty()) {
      makeLeaves(each);
      place = locate(each);
    }
    if (place.slot) mark(*place.slot, false, work);
  }
}

void Graph::Impl::spreadStep(const DirtyStep& step, std::vector<DirtyStep>& work) {
  const Plug& plug = step.plug;
  Node& node = *plug.node();
  const Place place = locate(plug);
  const auto markDestination = [&](const Plug& destination) {
    if (Slot* slot = locate(destination).slot) mark(*slot, false, work);
  };
  // A connection above carries the change to the part that corresponds; an array on the way is
  // carried whole.
  const Attribute* part = plug.attribute();
  for (Slot* slot = place.deepest; slot; slot = slot->parent) {
    if (slot->isArray) part = slot->attribute;
    if (!slot->wiring) continue;
    for (const Plug& destination : slot->wiring->destinations)
      markDestination(correspondingPlug(destination, slot->attribute, part));
  }
  if (!step.isBelowDone && place.slot && place.slot->outgoing > 0) {
    for (const auto& below : place.slot->below) {
      if (!below || below->outgoing == 0) continue;
      visitSlots(*below, [&](Slot& slot) {
        if (slot.wiring)
          for (const Plug& destination : slot.wiring->destinations) markDestination(destination);
      });
    }
  }
  if (!step.isReachDone)
    for (const Attribute* target : node.type().reach(plug.attribute()))
      visitInstances(node, *target, [&](Slot& slot) { mark(slot, true, work); });
  askHooks(plug, work);
}

void Graph::Impl::spread(const Plug& plug) {
  spreadFrom({plug, false});
}

void Graph::Impl::spreadElements(const Plug& array) {
  // A computed array is as dirty as its elements, which is told of all of them.
  spreadFrom({array, false, !array.node()->type().isComputed(array.attribute())});
}

void Graph::Impl::spreadFrom(const DirtyStep& first) {
  const Plug& plug = first.plug;
  std::vector<DirtyStep> work = std::move(spareWork);
  work.assign(1, first);
  while (!work.empty()) {
    const DirtyStep step = work.back();
    work.pop_back();
    spreadStep(step, work);
  }
  spareWork = std::move(work);
  if (observers.empty()) return;
  const std::vector<Plug> all = std::exchange(marked, {});
  tell({plug, {}, {}, true});
  for (const Plug& each : all) tell({each, {}, {}, true});
}

void Graph::Impl::markClean(const Plug& plug) {
  if (!checkPlug(plug)) return;
  if (plug.isArray()) {
    if (Slot* slot = makeSlot(plug, true).slot)
      visitSlots(*slot, [](Slot& each) { each.isDirty = false; });
    return;
  }
  const Place place = locate(plug);
  if (place.isMissing && !plug.node()->type().isComputed(plug.attribute())) return;
  if (place.packedIn && !place.slot) return;
  makeLeaves(plug);
  visitSlots(*locate(plug).slot, [](Slot& each) { each.isDirty = false; });
}

void Graph::dirty(const Plug& plug) {
  if (!checkPlug(plug)) return;
  if (Slot* slot = locate(plug).slot) (void)markBelow(*slot);
  noteChange(*plug.node());
  impl_->spread(plug);
}

bool Graph::isDirty(const Plug& plug) const {
  if (!checkPlug(plug)) return false;
  const Place place = locate(plug);
  if (!plug.isArray() && plug.isCompound()) {
    for (const AttributePtr& child : plug.attribute()->children)
      if (isDirty(plug.child(child.get()))) return true;
    return false;
  }
  if (!plug.isArray()) return Impl::needsRefresh(plug, place);
  if (!place.slot)
    return plug.node()->type().isComputed(plug.attribute()) || Impl::driverOf(place.deepest).slot;
  bool isAnyDirty = false;
  visitSlots(*place.slot, [&](const Slot& slot) { isAnyDirty = isAnyDirty || slot.isDirty; });
  return isAnyDirty;
}

void DataBlock::setClean(const Plug& plug) {
  graph_.impl_->markClean(plug);
}

}  // namespace host::dg
