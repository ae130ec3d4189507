#include "host/base/messages.h"
#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// Whether what drives a slot gives way to who sets it: an animation curve says what a value is at
/// a time, and a value that is set then holds till the curve speaks again.
bool givesWay(const Slot& driven) {
  Plug source = driven.wiring->source;
  if (source.node()->type().name == "unitConversion") {
    const Slot* input = locate(source.node()->plug("input")).slot;
    if (!input || !input->isDriven()) return false;
    source = input->wiring->source;
  }
  return source.node()->type().isA("animCurve");
}

/// The slot at or above a plug that something drives, but for what gives way; null when there is
/// none.
const Slot* firmlyDriven(const Place& place) {
  for (const Slot* slot = place.deepest; slot; slot = slot->parent)
    if (slot->isDriven() && !(slot == place.slot && givesWay(*slot))) return slot;
  return nullptr;
}

/// Holds the value that is not there now; undo and redo exchange them.
class SetChange final : public Change {
 public:
  SetChange(Graph::Impl& impl, const Plug& plug, Value other, int createdLevel)
      : impl_(impl),
        node_(plug.node()->shared_from_this()),
        plug_(plug),
        other_(std::move(other)),
        made_{createdLevel} {}
  Result<void> undo() override {
    HOST_TRY(checkFit());
    const Graph::Impl::Edit edit(impl_);
    HOST_TRY(exchange(false));
    impl_.dropElements(plug_, made_);
    return {};
  }
  Result<void> redo() override {
    HOST_TRY(checkFit());
    const Graph::Impl::Edit edit(impl_);
    const bool isBack = made_.isDropped;
    impl_.bringBack(plug_, made_);
    const Result<void> done = exchange(true);
    if (!done && isBack) impl_.dropElements(plug_, made_);
    return done;
  }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override {
    const auto* text = std::get_if<std::string>(&other_);
    return sizeof *this + (text ? text->capacity() : 0);
  }

 private:
  Result<void> checkFit() const {
    HOST_TRY(checkPlug(plug_));
    if (const Slot* slot = firmlyDriven(locate(plug_)))
      return fail("'{}' is connected to '{}'", plug_.name(), slot->wiring->source.name());
    if (!made_.isDropped && locate(plug_).isMissing) return fail("'{}' was removed", plug_.name());
    return {};
  }
  Result<void> exchange(bool isClean) {
    Value now = Graph::Impl::current(plug_);
    HOST_TRY(impl_.apply(plug_, other_, isClean));
    other_ = std::move(now);
    return {};
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug plug_;
  Value other_;
  MadeElements made_;
};

bool isFlagged(const Slot& slot, Graph::PlugFlag which) {
  const auto bit = static_cast<std::uint8_t>(1u << static_cast<unsigned>(which));
  return slot.wiring && (slot.wiring->flagMask & slot.wiring->flagBits & bit) != 0;
}

}  // namespace

Result<void> Graph::Impl::checkFree(const Plug& plug) {
  HOST_TRY(checkPlug(plug));
  for (const Slot* slot = locate(plug).deepest; slot; slot = slot->parent)
    if (slot->isDriven())
      return fail("'{}' is connected to '{}'", plug.name(), slot->wiring->source.name());
  return {};
}

Result<void> Graph::Impl::checkLeaf(const Plug& plug) {
  HOST_TRY(checkPlug(plug));
  if (plug.isArray())
    return fail(ErrorKind::BadArgument, "'{}' is an array: name one of its elements", plug.name());
  if (plug.isCompound())
    return fail(ErrorKind::BadArgument, "'{}' is a compound: name one of its children",
                plug.name());
  return {};
}

Value Graph::Impl::current(const Plug& plug) {
  if (plug.attribute()->internalStorage) {
    Value value;
    for (const NodeType* type = &plug.node()->type(); type; type = type->base)
      if (type->getInternal && type->getInternal(*plug.node(), plug, value)) return value;
  }
  return readLeaf(plug, locate(plug));
}

Result<bool> Graph::Impl::setInternally(const Plug& plug, const Value& value) {
  if (!plug.attribute()->internalStorage) return false;
  for (const NodeType* type = &plug.node()->type(); type; type = type->base) {
    if (!type->setInternal) continue;
    const Result<bool> handled = type->setInternal(*plug.node(), plug, value);
    if (!handled || *handled) return handled;
  }
  return false;
}

Result<void> Graph::Impl::apply(const Plug& plug, const Value& value, bool isClean) {
  const Result<bool> handled = setInternally(plug, value);
  if (!handled) return failWith(handled.error());
  if (!*handled) writeLeaf(plug, value);
  if (Slot* slot = locate(plug).slot) {
    slot->isDirty = !isClean && plug.node()->type().isComputed(plug.attribute());
    slot->isOutput = false;
  }
  spread(plug);
  attributeEvent(AttributeEvent::Set, plug);
  return {};
}

Result<Value> Graph::get(const Plug& plug) {
  HOST_TRY(Impl::checkLeaf(plug));
  const Place place = locate(plug);
  if (place.isMissing && plug.attribute()->internalStorage) {
    // What the type knows of an element that is not there needs none to be made.
    Value value;
    for (const NodeType* type = &plug.node()->type(); type; type = type->base)
      if (type->getInternal && type->getInternal(*plug.node(), plug, value)) return value;
  }
  if (!Impl::needsRefresh(plug, place)) {
    if (plug.attribute()->internalStorage) return Impl::current(plug);
    return readLeaf(plug, place);
  }
  HOST_TRY(impl_->refreshLeaf(plug));
  return Impl::current(plug);
}

Value Graph::stored(const Plug& plug) const {
  return Impl::checkLeaf(plug) ? Impl::current(plug) : Value();
}

Result<void> Graph::settable(const Plug& plug) const {
  HOST_TRY(checkPlug(plug));
  if (!plug.attribute()->writable) return fail("'{}' is not writable", plug.name());
  const Place place = locate(plug);
  for (const Slot* slot = place.deepest; slot; slot = slot->parent)
    if (isFlagged(*slot, PlugFlag::Locked)) return fail("'{}' is locked", plug.name());
  if (const Slot* slot = firmlyDriven(place))
    return fail("'{}' is connected: its value comes from '{}'", plug.name(),
                slot->wiring->source.name());
  // Counted with its own, which gives way.
  if (place.slot && place.slot->incoming > (place.slot->isDriven() ? 1 : 0))
    return fail("'{}' has connected children", plug.name());
  return {};
}

Result<void> Graph::set(const Plug& plug, const Value& value) {
  HOST_TRY(Impl::checkLeaf(plug));
  HOST_TRY(settable(plug));
  auto converted = plug.attribute()->convert(value);
  if (!converted) return failAt(fmt::format("'{}'", plug.name()), converted.error());
  // What is set over a curve goes when the curve changes, and only what was looked at is told so.
  if (const Slot* slot = locate(plug).slot; slot && slot->isDriven()) HOST_TRY(get(plug));
  const Impl::Edit edit(*impl_);
  Value before = isRecording() ? Impl::current(plug) : Value();
  const int createdLevel = impl_->makeElements(plug, false);
  if (auto applied = impl_->apply(plug, *converted, true); !applied) {
    MadeElements made{createdLevel};
    impl_->dropElements(plug, made);
    return applied;
  }
  impl_->record<SetChange>(plug, std::move(before), createdLevel);
  return {};
}

Result<math::Vec3> Graph::getVec3(const Plug& compound) {
  if (compound.isNull() || !compound.isCompound() || compound.attribute()->children.size() < 2)
    return fail("'{}' does not have the parts of a vector", compound.name());
  math::Vec3 result;
  const int count = std::min(3, static_cast<int>(compound.attribute()->children.size()));
  for (int axis = 0; axis < count; ++axis) {
    const auto value = get(compound.child(axis));
    if (!value) return failWith(value.error());
    if (const auto* real = std::get_if<double>(&*value)) result[axis] = *real;
    if (const auto* integer = std::get_if<std::int64_t>(&*value))
      result[axis] = static_cast<double>(*integer);
  }
  return result;
}

Result<void> Graph::setVec3(const Plug& compound, const math::Vec3& value) {
  if (compound.isNull() || !compound.isCompound() || compound.attribute()->children.size() < 2)
    return fail("'{}' does not have the parts of a vector", compound.name());
  const int count = std::min(3, static_cast<int>(compound.attribute()->children.size()));
  for (int axis = 0; axis < count; ++axis) HOST_TRY(settable(compound.child(axis)));
  for (int axis = 0; axis < count; ++axis) HOST_TRY(set(compound.child(axis), value[axis]));
  return {};
}

void Graph::storeOutput(const Plug& plug, Value value) {
  if (auto usable = Impl::checkLeaf(plug); !usable) return;
  auto converted = plug.attribute()->convert(value);
  if (!converted) {
    postMessage(MessageKind::Warning,
                fmt::format("'{}': {}", plug.name(), converted.error().message));
    return;
  }
  const int createdLevel = makeSlot(plug, false).createdLevel;
  if (createdLevel >= 0) noteEvaluatedElement(elementAtLevel(plug, createdLevel));
  const Result<bool> handled = Impl::setInternally(plug, *converted);
  if (!handled || !*handled) writeLeaf(plug, *std::move(converted));
  if (Slot* slot = locate(plug).slot) {
    slot->isDirty = false;
    // What the type keeps itself was not written here.
    if (!handled || !*handled) slot->isOutput = true;
  }
}

}  // namespace host::dg
