#include <algorithm>

#include "host/dg/connection_check.h"
#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

/// A connection made or broken. `free_` is what the destination holds while it is not connected.
/// What is as the record wants it already is left as it is, in the other direction too.
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
        madeSource_{created.source},
        madeDestination_{created.destination} {}

  Result<void> undo() override { return isMaking_ ? unmake() : make(); }
  Result<void> redo() override { return isMaking_ ? make() : unmake(); }
  void visitNodes(const VisitNode& visit) const override {
    visit(*sourceNode_);
    visit(*destinationNode_);
  }
  [[nodiscard]] std::size_t bytes() const override {
    return sizeof *this - sizeof free_ + free_.bytes();
  }

 private:
  Result<void> make() {
    if (std::exchange(isPassive_, false)) return {};
    HOST_TRY(checkPlug(source_));
    HOST_TRY(checkPlug(destination_));
    const Plug now = impl_.graph.source(destination_);
    isPassive_ = now == source_;
    if (isPassive_) return {};
    HOST_TRY(Graph::Impl::checkFree(destination_));
    if (const Slot* slot = locate(destination_).slot; slot && slot->incoming > 0)
      return fail("'{}' has connected children", destination_.name());
    // What is computed is there as soon as somebody asks.
    const bool isComputed = sourceNode_->type().isComputed(source_.attribute());
    if (!madeSource_.isDropped && !isComputed && locate(source_).isMissing)
      return fail("'{}' was removed", source_.name());
    if (!madeDestination_.isDropped && locate(destination_).isMissing)
      return fail("'{}' was removed", destination_.name());
    const Graph::Impl::Edit edit(impl_);
    impl_.bringBack(source_, madeSource_);
    impl_.bringBack(destination_, madeDestination_);
    free_ = captureValues(destination_);  // somebody may have set it since
    impl_.wire(source_, destination_, position_);
    return {};
  }
  Result<void> unmake() {
    if (std::exchange(isPassive_, false)) return {};
    HOST_TRY(checkPlug(source_));
    HOST_TRY(checkPlug(destination_));
    const Plug now = impl_.graph.source(destination_);
    if (now && now != source_)
      return fail("'{}' is connected to '{}'", destination_.name(), now.name());
    isPassive_ = !now;
    if (isPassive_) return {};
    const Graph::Impl::Edit edit(impl_);
    position_ = impl_.unwire(source_, destination_);
    impl_.restoreFree(destination_, free_);
    impl_.dropElements(destination_, madeDestination_);
    impl_.dropElements(source_, madeSource_);
    return {};
  }

  Graph::Impl& impl_;
  NodePtr sourceNode_, destinationNode_;
  Plug source_, destination_;
  ValueTree free_;
  bool isMaking_;
  std::ptrdiff_t position_;  ///< among the source's destinations; -1: at the end
  MadeElements madeSource_, madeDestination_;
  bool isPassive_ = false;  ///< the last step found nothing to do; so does its opposite
};

/// Setting a destination back to its default when its connection goes.
class ResetChange final : public Change {
 public:
  ResetChange(Graph::Impl& impl, const Plug& plug, ValueTree before)
      : impl_(impl),
        node_(plug.node()->shared_from_this()),
        plug_(plug),
        other_(std::move(before)) {}
  Result<void> undo() override { return exchange(); }
  Result<void> redo() override { return exchange(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + other_.bytes(); }

 private:
  Result<void> exchange() {
    HOST_TRY(Graph::Impl::checkFree(plug_));
    if (locate(plug_).isMissing) return fail("'{}' was removed", plug_.name());
    const Graph::Impl::Edit edit(impl_);
    ValueTree now;
    now.value = Graph::Impl::current(plug_);
    impl_.restoreFree(plug_, std::exchange(other_, std::move(now)));
    impl_.spread(plug_);
    return {};
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug plug_;
  ValueTree other_;
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
    if (!end->attribute()->connectable)
      return fail(ErrorKind::BadArgument, "'{}' cannot be connected", end->name());
    if (end->isElement() && end->logicalIndex() < 0)
      return fail(ErrorKind::BadArgument, "{} is not an index of '{}'", end->logicalIndex(),
                  end->array().name());
  }
  if (isAtOrBelow(source, destination) || isAtOrBelow(destination, source))
    return fail(ErrorKind::BadArgument,
                "'{}' and '{}' are parts of each other and cannot be connected", source.name(),
                destination.name());
  if (!source.attribute()->readable)
    return fail("'{}' is not readable and cannot be a source", source.name());
  if (!destination.attribute()->writable)
    return fail(ErrorKind::BadArgument, "'{}' is not writable and cannot be connected from '{}'",
                destination.name(), source.name());
  if (source.isArray() != destination.isArray())
    return fail(ErrorKind::BadArgument,
                "'{}' and '{}' cannot be connected: one is an array, the other is not",
                source.name(), destination.name());
  if (!kindsFit(*source.attribute(), *destination.attribute()))
    return fail(ErrorKind::BadArgument, "'{}' of type {} cannot be connected to '{}' of type {}",
                source.name(), source.attribute()->typeWord(), destination.name(),
                destination.attribute()->typeWord());
  return {};
}

}  // namespace

Result<void> checkConnection(const Plug& source, const Plug& destination) {
  return checkEnds(source, destination);
}

namespace {

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
  noteChange(*from.node);
  noteChange(*to.node);
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

std::vector<std::unique_ptr<Change>> Graph::Impl::severBelow(const Slot& slot) {
  std::vector<std::unique_ptr<Change>> severed;
  for (const auto& [source, destination] : connectionsBelow(slot, true, true)) {
    if (graph.source(destination) != source) continue;
    ValueTree free = captureValues(destination);
    const std::ptrdiff_t position = unwire(source, destination);
    severed.push_back(
        std::make_unique<WireChange>(*this, source, destination, std::move(free), false, position));
  }
  return severed;
}

void Graph::Impl::restore(std::vector<std::unique_ptr<Change>>& severed) {
  // One whose other end is gone stays broken.
  for (auto change = severed.rbegin(); change != severed.rend(); ++change) (void)(*change)->undo();
  severed.clear();
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
      ValueTree before;
      before.value = current(destination);
      (void)apply(destination, destination.attribute()->initialValue(), true);
      record<ResetChange>(destination, std::move(before));
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
  if (source(to) == from)
    return fail(ErrorKind::BadArgument, "'{}' is connected to '{}' already", from.name(),
                to.name());
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
    return fail(ErrorKind::BadArgument, "'{}' has an incoming connection from '{}' already",
                inTheWay.front().destination.name(), inTheWay.front().source.name());
  const Impl::Edit edit(*impl_);
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
  if (from.isNull() || to.isNull()) return fail(ErrorKind::NotFound, "There is no such attribute");
  if (source(to) != from) return fail("'{}' is not connected to '{}'", from.name(), to.name());
  if (isLockedHereOrAbove(to)) return fail("'{}' is locked", to.name());
  const Impl::Edit edit(*impl_);
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
