#include <algorithm>

#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// A connection made or broken. `free_` is what the destination holds while it is not connected.
class WireChange final : public Change {
 public:
  /// Array levels that making it had to create elements at, or -1.
  struct Created {
    int source, destination;
  };
  WireChange(Graph::Impl& impl, const Plug& source, const Plug& destination, ValueTree free,
             bool isMaking, std::ptrdiff_t position, Created created = {-1, -1})
      : impl_(impl),
        sourceNode_(source.node()->shared_from_this()),
        destinationNode_(destination.node()->shared_from_this()),
        source_(source),
        destination_(destination),
        free_(std::move(free)),
        isMaking_(isMaking),
        position_(position),
        created_(created) {}

  void undo() override { isMaking_ ? unmake() : make(); }
  void redo() override { isMaking_ ? make() : unmake(); }
  [[nodiscard]] std::size_t bytes() const override {
    return sizeof *this - sizeof free_ + free_.bytes();
  }

 private:
  // Edits without a record in between may have taken a node or the connection: then there is
  // nothing to do.
  void make() {
    if (!isUsable(source_) || !isUsable(destination_)) return;
    if (impl_.graph.source(destination_)) return;
    impl_.makeElements(source_, true);
    impl_.makeElements(destination_, true);
    impl_.wire(source_, destination_, position_);
  }
  void unmake() {
    if (impl_.graph.source(destination_) != source_) return;
    impl_.unwire(source_, destination_);
    impl_.restoreFree(destination_, free_);
    impl_.dropElements(destination_, created_.destination);
    impl_.dropElements(source_, created_.source);
  }

  Graph::Impl& impl_;
  NodePtr sourceNode_, destinationNode_;
  Plug source_, destination_;
  ValueTree free_;
  bool isMaking_;
  std::ptrdiff_t position_;  ///< among the source's destinations; -1: at the end
  Created created_;
};

/// Setting a destination back to its default when its connection goes.
class ResetChange final : public Change {
 public:
  ResetChange(Graph::Impl& impl, const Plug& plug, ValueTree before, ValueTree after)
      : impl_(impl),
        node_(plug.node()->shared_from_this()),
        plug_(plug),
        before_(std::move(before)),
        after_(std::move(after)) {}
  void undo() override { put(before_); }
  void redo() override { put(after_); }
  [[nodiscard]] std::size_t bytes() const override {
    return sizeof *this + before_.bytes() + after_.bytes();
  }

 private:
  void put(const ValueTree& tree) {
    if (!isUsable(plug_)) return;
    impl_.restoreFree(plug_, tree);
    impl_.spread(plug_);
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug plug_;
  ValueTree before_, after_;
};

bool carriesWord(const Attribute& generic, const Attribute& other) {
  if (generic.acceptedTypes.empty() || other.type == AttributeType::Generic) return true;
  return std::ranges::find(generic.acceptedTypes, other.typeWord()) != generic.acceptedTypes.end();
}

bool isPayload(const Attribute& attribute, std::string_view word) {
  if (attribute.type == AttributeType::Typed)
    return attribute.dataType.empty() || attribute.dataType == word;
  return (attribute.type == AttributeType::Matrix || attribute.type == AttributeType::String) &&
         attribute.typeWord() == word;
}

/// Whether values of one attribute fit the other, arrays left aside.
bool kindsFit(const Attribute& from, const Attribute& to) {
  if (from.type == AttributeType::Message || to.type == AttributeType::Message)
    return from.type == to.type;
  if (to.type == AttributeType::Generic) return carriesWord(to, from);
  if (from.type == AttributeType::Generic) return carriesWord(from, to);
  if (from.isCompound() || to.isCompound()) {
    if (!from.isCompound() || !to.isCompound() || from.children.size() != to.children.size())
      return false;
    for (std::size_t i = 0; i < from.children.size(); ++i)
      if (from.children[i]->isArray != to.children[i]->isArray ||
          !kindsFit(*from.children[i], *to.children[i]))
        return false;
    return true;
  }
  if (from.isNumeric() || to.isNumeric()) return from.isNumeric() && to.isNumeric();
  return isPayload(to, from.typeWord()) || isPayload(from, to.typeWord());
}

Result<void> checkEnds(const Plug& source, const Plug& destination) {
  for (const Plug* end : {&source, &destination}) {
    HOST_TRY(checkPlug(*end));
    if (!end->attribute()->connectable) return fail("'{}' cannot be connected", end->name());
    if (end->isElement() && end->logicalIndex() < 0)
      return fail("{} is not an index of '{}'", end->logicalIndex(), end->array().name());
  }
  if (isAtOrBelow(source, destination) || isAtOrBelow(destination, source))
    return fail("'{}' and '{}' are parts of each other and cannot be connected", source.name(),
                destination.name());
  if (!source.attribute()->readable)
    return fail("'{}' is not readable and cannot be a source", source.name());
  if (!destination.attribute()->writable)
    return fail("'{}' is not writable and cannot be connected from '{}'", destination.name(),
                source.name());
  if (source.isArray() != destination.isArray())
    return fail("'{}' and '{}' cannot be connected: one is an array, the other is not",
                source.name(), destination.name());
  if (!kindsFit(*source.attribute(), *destination.attribute()))
    return fail("'{}' of type {} cannot be connected to '{}' of type {}", source.name(),
                source.attribute()->typeWord(), destination.name(),
                destination.attribute()->typeWord());
  return {};
}

Result<void> askTypes(const Plug& own, const Plug& other, bool ownIsSource) {
  for (const NodeType* type = &own.node()->type(); type; type = type->base)
    if (type->mayConnect) HOST_TRY(type->mayConnect(*own.node(), own, other, ownIsSource));
  return {};
}

void tellTypes(const Plug& own, const Plug& other, bool ownIsSource, bool made) {
  for (const NodeType* type = &own.node()->type(); type; type = type->base)
    if (type->connectionChanged)
      type->connectionChanged(*own.node(), own, other, ownIsSource, made);
}

void collect(const Slot& slot, bool incoming, bool outgoing,
             std::vector<Graph::Connection>& result) {
  if ((!incoming || slot.incoming == 0) && (!outgoing || slot.outgoing == 0)) return;
  if (slot.wiring) {
    if (incoming && slot.isDriven()) result.push_back({slot.wiring->source, plugOf(slot)});
    if (outgoing)
      for (const Plug& destination : slot.wiring->destinations)
        result.push_back({plugOf(slot), destination});
  }
  for (const auto& below : slot.below)
    if (below) collect(*below, incoming, outgoing, result);
}

std::vector<Graph::Connection> collectNode(const Node& node, bool incoming) {
  std::vector<Graph::Connection> result;
  for (const auto& slot : NodeAccess::slots(node))
    if (slot) collect(*slot, incoming, !incoming, result);
  return result;
}

void dropEmptyWiring(Slot& slot) {
  if (slot.wiring && !slot.wiring->source && slot.wiring->destinations.empty() &&
      slot.wiring->flagMask == 0)
    slot.wiring.reset();
}

}  // namespace

void Graph::Impl::wire(const Plug& source, const Plug& destination, std::ptrdiff_t position) {
  Slot& from = *makeSlot(source, true).slot;
  Slot& to = *makeSlot(destination, true).slot;
  HOST_ASSERT(!to.isDriven(), "break the connection of a destination before making another");
  to.wires().source = source;
  std::vector<Plug>& destinations = from.wires().destinations;
  const auto count = static_cast<std::ptrdiff_t>(destinations.size());
  destinations.insert(destinations.begin() + (position < 0 ? count : std::min(position, count)),
                      destination);
  for (Slot* slot = &from; slot; slot = slot->parent) ++slot->outgoing;
  for (Slot* slot = &to; slot; slot = slot->parent) ++slot->incoming;
  visitSlots(to, [](Slot& slot) { slot.isDirty = slot.isLeaf() || slot.isArray; });
  spread(destination);
  tellTypes(source, destination, true, true);
  tellTypes(destination, source, false, true);
  attributeEvent(AttributeEvent::ConnectionMade, destination, source);
}

std::ptrdiff_t Graph::Impl::unwire(const Plug& source, const Plug& destination) {
  Slot& from = *makeSlot(source, true).slot;
  Slot& to = *makeSlot(destination, true).slot;
  std::vector<Plug>& destinations = from.wires().destinations;
  const auto after = std::find(destinations.rbegin(), destinations.rend(), destination).base();
  HOST_ASSERT(after != destinations.begin() && to.isDriven(), "unwire only what is connected");
  const std::ptrdiff_t position = after - destinations.begin() - 1;
  destinations.erase(after - 1);
  to.wires().source = Plug();
  for (Slot* slot = &from; slot; slot = slot->parent) --slot->outgoing;
  for (Slot* slot = &to; slot; slot = slot->parent) --slot->incoming;
  dropEmptyWiring(from);
  dropEmptyWiring(to);
  const NodeType& type = to.node->type();
  const bool isStillDriven = to.incoming > 0;
  visitSlots(to, [&](Slot& slot) {
    const bool keepsOwn = isStillDriven && (slot.incoming > 0 || driverOf(&slot).slot);
    slot.isDirty =
        (slot.isLeaf() || slot.isArray) && (keepsOwn || startsDirty(type, *slot.attribute));
  });
  spread(destination);
  tellTypes(source, destination, true, false);
  tellTypes(destination, source, false, false);
  attributeEvent(AttributeEvent::ConnectionBroken, destination, source);
  return position;
}

void Graph::Impl::breakConnection(const Plug& source, const Plug& destination, bool keepValue) {
  // What the destination holds afterwards must not depend on whether anybody had looked at it.
  if (keepValue) (void)refresh(destination);
  const bool isRecording = graph.isRecording();
  ValueTree free = isRecording ? captureValues(destination) : ValueTree();
  const std::ptrdiff_t position = unwire(source, destination);
  if (isRecording) record<WireChange>(source, destination, std::move(free), false, position);
}

void Graph::Impl::unwireBelow(const Slot& slot) {
  for (const auto& [source, destination] : connectionsBelow(slot, true, true))
    if (graph.source(destination) == source) unwire(source, destination);
}

void Graph::Impl::restoreFree(const Plug& plug, const ValueTree& tree) {
  if (!plug.isArray() && !plug.isCompound()) {
    const Result<bool> handled = setInternally(plug, tree.value);
    if (handled && *handled) return;
  }
  restoreValues(plug, tree);
}

void Graph::Impl::afterDisconnect(const Plug& destination) {
  switch (destination.attribute()->disconnectBehavior) {
    case DisconnectBehavior::Delete:
      if (destination.isElement() && !locate(destination).isMissing)
        (void)graph.removeElement(destination, true);
      break;
    case DisconnectBehavior::Reset: {
      if (destination.isCompound() || destination.isArray()) break;
      ValueTree before, after;
      before.value = current(destination);
      after.value = destination.attribute()->initialValue();
      (void)apply(destination, after.value, true);
      record<ResetChange>(destination, std::move(before), std::move(after));
      break;
    }
    case DisconnectBehavior::Nothing:
      break;
  }
}

std::vector<Graph::Connection> Graph::Impl::connectionsBelow(const Slot& slot, bool incoming,
                                                             bool outgoing) {
  std::vector<Connection> result;
  collect(slot, incoming, outgoing, result);
  return result;
}

Result<void> Graph::connect(const Plug& from, const Plug& to, bool force) {
  HOST_TRY(checkEnds(from, to));
  if (source(to) == from) return fail("'{}' is connected to '{}' already", from.name(), to.name());
  if (isLockedHereOrAbove(to)) return fail("'{}' is locked", to.name());
  HOST_TRY(impl_->checkCreatable(from));
  HOST_TRY(askTypes(from, to, true));
  HOST_TRY(askTypes(to, from, false));
  // A plug, the compounds above it and their children cannot be driven from several sides.
  std::vector<Connection> inTheWay;
  const Place place = locate(to);
  for (const Slot* slot = place.slot ? place.slot->parent : place.deepest; slot;
       slot = slot->parent)
    if (slot->isDriven()) inTheWay.push_back({slot->wiring->source, plugOf(*slot)});
  if (place.slot) collect(*place.slot, true, false, inTheWay);
  if (!inTheWay.empty() && !force)
    return fail("'{}' has an incoming connection from '{}' already",
                inTheWay.front().destination.name(), inTheWay.front().source.name());
  for (const Connection& old : inTheWay) impl_->breakConnection(old.source, old.destination, false);

  const int createdSource = impl_->makeElements(from, true);
  const int createdDestination = impl_->makeElements(to, true);
  ValueTree free = isRecording() ? captureValues(to) : ValueTree();
  impl_->wire(from, to, -1);
  impl_->record<WireChange>(from, to, std::move(free), true, std::ptrdiff_t{-1},
                            WireChange::Created{createdSource, createdDestination});
  return {};
}

Result<void> Graph::disconnect(const Plug& from, const Plug& to) {
  if (from.isNull() || to.isNull()) return fail("There is no such attribute");
  if (source(to) != from) return fail("'{}' is not connected to '{}'", from.name(), to.name());
  if (isLockedHereOrAbove(to)) return fail("'{}' is locked", to.name());
  impl_->breakConnection(from, to, true);
  impl_->afterDisconnect(to);
  return {};
}

Plug Graph::source(const Plug& destination) const {
  if (!checkPlug(destination)) return {};
  const Slot* slot = locate(destination).slot;
  return slot && slot->wiring ? slot->wiring->source : Plug();
}

std::vector<Plug> Graph::destinations(const Plug& source) const {
  if (!checkPlug(source)) return {};
  const Slot* slot = locate(source).slot;
  return slot && slot->wiring ? slot->wiring->destinations : std::vector<Plug>();
}

bool Graph::isDriven(const Plug& plug) const {
  if (!isUsable(plug)) return false;
  for (const Slot* slot = locate(plug).deepest; slot; slot = slot->parent)
    if (slot->isDriven()) return true;
  return false;
}

std::vector<Graph::Connection> Graph::incoming(const Node& node) const {
  return collectNode(node, true);
}
std::vector<Graph::Connection> Graph::outgoing(const Node& node) const {
  return collectNode(node, false);
}

}  // namespace host::dg
