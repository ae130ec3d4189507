#include <unordered_set>

#include "host/base/cancel_poll.h"
#include "host/base/messages.h"
#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// Evaluations nested deeper than this bring everything upstream up to date first, without
/// recursion.
constexpr int kDirectDepth = 64;
/// The end for chains whose dependencies cannot be seen in advance (those that only
/// `dependentsDirty` knows).
constexpr int kMaxDepth = 1000;

bool isReached(const NodeType& type, const Attribute& from, const Attribute& target) {
  const auto& reach = type.reach(&from);
  const auto isOnReach = [&](const Attribute* wanted) {
    for (const Attribute* each : reach)
      if (each == wanted) return true;
    return false;
  };
  for (const Attribute* above = &target; above; above = above->parent)
    if (isOnReach(above)) return true;
  for (const Attribute* each : reach)
    for (const Attribute* above = each->parent; above; above = above->parent)
      if (above == &target) return true;
  return false;
}

void collectDriven(const Slot& slot, std::vector<const Slot*>& driven) {
  if (slot.incoming == 0) return;
  if (slot.isDriven()) driven.push_back(&slot);
  for (const auto& below : slot.below)
    if (below) collectDriven(*below, driven);
}

}  // namespace

Graph::Impl::Driver Graph::Impl::driverOf(Slot* deepest) {
  Driver driver;
  for (Slot* slot = deepest; slot; slot = slot->parent) {
    if (slot->isArray) driver.unit = slot;
    if (!slot->isDriven()) continue;
    driver.slot = slot;
    return driver;
  }
  return {};
}

bool Graph::Impl::needsRefresh(const Plug& plug, const Place& place) {
  if (place.slot && place.slot->isDirty) return true;
  const Driver driver = driverOf(place.deepest);
  if (driver.unit) return driver.unit->isDirty;
  if (place.slot) return false;
  if (driver.slot) return true;  // a child that was never fetched
  if (place.packedIn || (place.isMissing && plug.attribute()->isDynamic)) return false;
  return startsDirty(plug.node()->type(), *plug.attribute());
}

template <class Work>
Result<void> Graph::Impl::evaluating(const Plug& plug, Slot& slot, const Work& work) {
  if (slot.isEvaluating) {
    if (!isCycleReported)
      postMessage(MessageKind::Warning,
                  fmt::format("'{}' depends on itself: its last value is used", plug.name()));
    isCycleReported = true;
    return {};
  }
  if (const auto known = failed.find(&slot); known != failed.end()) return failWith(known->second);
  if (depth >= kMaxDepth)
    return fail("'{}' depends on a chain that is too long to evaluate", plug.name());
  struct Scope {
    Impl& impl;
    const Plug& plug;
    ~Scope() {
      if (Slot* own = locate(plug).slot) own->isEvaluating = false;
      if (--impl.depth > 0) return;
      impl.failed.clear();
      impl.isCycleReported = false;
    }
  };
  slot.isEvaluating = true;
  ++depth;
  // Work that asks for a value may be left; what plug-ins compute and hear for it may not.
  const LeaveScope stays(false);
  const Scope scope{*this, plug};
  if (depth > kDirectDepth) refreshUpstream(plug);
  Result<void> result = work();
  if (!result) {
    failed.insert_or_assign(&slot, result.error());
    // In a cycle somebody took the last value and counts as clean, though this plug is not.
    if (isCycleReported) spread(plug);
  }
  if (result) attributeEvent(AttributeEvent::Evaluated, plug);
  return result;
}

Result<void> Graph::Impl::refresh(const Plug& plug) {
  HOST_TRY(checkPlug(plug));
  if (plug.isArray()) return refreshArray(plug);
  return plug.isCompound() ? refreshCompound(plug) : refreshLeaf(plug);
}

Result<void> Graph::Impl::refreshLeaf(const Plug& plug) {
  Place place = locate(plug);
  if (!needsRefresh(plug, place)) return {};
  const Driver driver = driverOf(place.deepest);
  if (driver.unit) {
    HOST_TRY(refreshArray(plugOf(*driver.unit)));
    if (Slot* slot = locate(plug).slot) slot->isDirty = false;
    return {};
  }
  if (!place.slot) {
    const Made made = makeSlot(plug, true);
    place.slot = made.slot;
    if (made.createdLevel >= 0) noteEvaluatedElement(elementAtLevel(plug, made.createdLevel));
  }
  return evaluating(plug, *place.slot,
                    [&] { return driver.slot ? fetchLeaf(plug, *driver.slot) : compute(plug); });
}

Result<void> Graph::Impl::fetchLeaf(const Plug& plug, const Slot& driver) {
  if (plug.attribute()->type != AttributeType::Message) {
    const Plug from = correspondingPlug(driver.wiring->source, driver.attribute, plug.attribute());
    const auto value = graph.get(from);
    if (!value) return failWith(value.error());
    auto converted = plug.attribute()->convert(*value);
    if (!converted)
      return fail("'{}' cannot take the value of '{}': {}", plug.name(), from.name(),
                  converted.error().message);
    const Result<bool> handled = setInternally(plug, *converted);
    if (!handled) return failWith(handled.error());
    if (!*handled) writeLeaf(plug, *std::move(converted));
  }
  if (Slot* slot = locate(plug).slot) slot->isDirty = false;
  return {};
}

Result<void> Graph::Impl::refreshCompound(const Plug& plug) {
  if (plug.node()->type().isComputed(plug.attribute()) && graph.isDirty(plug)) {
    const Place place = locate(plug);
    if (!driverOf(place.deepest).slot) {
      Slot& slot = place.slot ? *place.slot : *makeSlot(plug, true).slot;
      HOST_TRY(evaluating(plug, slot, [&]() -> Result<void> {
        const Result<Computed> computed = computeExactly(plug);
        if (!computed) return failWith(computed.error());
        return {};
      }));
    }
  }
  for (const AttributePtr& child : plug.attribute()->children)
    HOST_TRY(refresh(plug.child(child.get())));
  return {};
}

Result<void> Graph::Impl::refreshArray(const Plug& plug) {
  Place place = locate(plug);
  const Driver driver = driverOf(place.deepest);
  const bool isComputed = plug.node()->type().isComputed(plug.attribute());
  if (!place.slot) {
    if (place.isMissing || (!isComputed && !driver.slot)) return {};
    place.slot = makeSlot(plug, true).slot;
  }
  if (driver.unit && driver.unit != place.slot && driver.unit->isArray)
    return refreshArray(plugOf(*driver.unit));
  if (place.slot->isDirty) {
    HOST_TRY(evaluating(plug, *place.slot, [&]() -> Result<void> {
      if (driver.slot) return fetchArray(*place.slot, *driver.slot);
      const Result<Computed> computed = computeExactly(plug);
      if (!computed) return failWith(computed.error());
      if (Slot* slot = locate(plug).slot) slot->isDirty = false;
      return {};
    }));
  }
  if (driver.slot) return {};
  // Evaluating one element may make others.
  for (std::size_t i = 0; i < place.slot->below.size(); ++i)
    HOST_TRY(refresh(plug.element(place.slot->below[i]->index)));
  return {};
}

Result<void> Graph::Impl::fetchArray(Slot& array, const Slot& driver) {
  const Plug from = correspondingPlug(driver.wiring->source, driver.attribute, array.attribute);
  HOST_TRY(refresh(from));
  restoreValues(plugOf(array), captureValues(from));
  // Here they are the connection's, whoever made them there.
  if (array.packed) array.packed->evaluated.clear();
  visitSlots(array, [](Slot& slot) { slot.isDirty = false; });
  return {};
}

Result<Computed> Graph::Impl::computeExactly(const Plug& plug) {
  Node& node = *plug.node();
  DataBlock block(graph, node);
  for (const NodeType* type = &node.type(); type; type = type->base) {
    if (!type->compute) continue;
    const Result<Computed> computed = type->compute(node, plug, block);
    if (!computed) return computed;
    if (block.inputFailure()) return failWith(*block.inputFailure());
    if (*computed == Computed::Unhandled) continue;
    markClean(plug);
    return computed;
  }
  return Computed::Unhandled;
}

Result<void> Graph::Impl::compute(const Plug& plug) {
  // Types may know an output by its own plug only, or by that of the compound or array it is part
  // of.
  for (Plug part = plug; part; part = part.isElement() ? part.array() : part.parent()) {
    const Result<Computed> computed = computeExactly(part);
    if (!computed) return failWith(computed.error());
    if (*computed == Computed::Done) break;
  }
  markClean(plug);
  return {};
}

void Graph::Impl::collectDirtyInputs(const Plug& plug, std::vector<Plug>& inputs) {
  const auto add = [&](const Plug& input) {
    const Slot* slot = locate(input).slot;
    if (slot && (slot->isEvaluating || failed.count(slot) != 0)) return;
    if (graph.isDirty(input)) inputs.push_back(input);
  };
  const Place place = locate(plug);
  if (const Driver driver = driverOf(place.deepest); driver.slot) {
    const Attribute* part = driver.unit ? driver.unit->attribute : plug.attribute();
    add(correspondingPlug(driver.slot->wiring->source, driver.slot->attribute, part));
    return;
  }
  const NodeType& type = plug.node()->type();
  std::vector<const Slot*> driven;
  if (place.slot) collectDriven(*place.slot, driven);
  const std::size_t own = driven.size();
  for (const auto& slot : NodeAccess::slots(*plug.node()))
    if (slot) collectDriven(*slot, driven);
  const bool isKnown = type.isComputed(plug.attribute());
  for (std::size_t i = 0; i < driven.size(); ++i)
    if (i < own || !isKnown || isReached(type, *driven[i]->attribute, *plug.attribute()))
      add(plugOf(*driven[i]));
}

void Graph::Impl::refreshUpstream(const Plug& plug) {
  struct Step {
    Plug plug;
    bool isExpanded;
  };
  std::vector<Plug> inputs;
  collectDirtyInputs(plug, inputs);
  if (inputs.empty()) return;
  std::unordered_set<Plug, PlugHash> seen{plug};
  std::vector<Step> stack;
  const auto push = [&] {
    for (const Plug& input : inputs)
      if (seen.insert(input).second) stack.push_back({input, false});
    inputs.clear();
  };
  push();
  while (!stack.empty()) {
    const Plug top = stack.back().plug;
    if (!stack.back().isExpanded) {
      stack.back().isExpanded = true;
      collectDirtyInputs(top, inputs);
      push();
      continue;
    }
    stack.pop_back();
    (void)refresh(top);  // an error is met again, and reported, by whoever reads it
  }
}

bool Graph::isEvaluating() const {
  return impl_->depth > 0;
}

Result<void> Graph::evaluate(const Plug& plug) {
  return impl_->refresh(plug);
}

}  // namespace host::dg
