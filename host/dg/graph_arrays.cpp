#include <algorithm>
#include <cmath>

#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

class ElementChange final : public Change {
 public:
  ElementChange(Graph::Impl& impl, const Plug& element, int createdLevel)
      : impl_(impl),
        node_(element.node()->shared_from_this()),
        element_(element),
        made_{createdLevel},
        isCreation_(true) {}
  ElementChange(Graph::Impl& impl, const Plug& element, DetachedElement detached)
      : impl_(impl),
        node_(element.node()->shared_from_this()),
        element_(element),
        made_{element.levels() - 1, true, std::move(detached)},
        isCreation_(false) {}
  Result<void> undo() override { return isCreation_ ? take() : put(); }
  Result<void> redo() override { return isCreation_ ? put() : take(); }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override {
    const DetachedElement& kept = made_.kept;
    std::size_t total = sizeof *this + kept.packed.capacity() * sizeof(double);
    if (kept.slot) visitSlots(*kept.slot, [&](const Slot&) { total += sizeof(Slot); });
    return total;
  }

 private:
  Result<void> take() {
    HOST_TRY(Graph::Impl::checkFree(element_.array()));
    const Graph::Impl::Edit edit(impl_);
    impl_.dropElements(element_, made_);
    return {};
  }
  Result<void> put() {
    HOST_TRY(Graph::Impl::checkFree(element_.array()));
    const Graph::Impl::Edit edit(impl_);
    impl_.bringBack(element_, made_);
    return {};
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug element_;
  MadeElements made_;
  bool isCreation_;
};

/// Holds what of the array is not there now; undo and redo exchange it.
class PackedChange final : public Change {
 public:
  PackedChange(Graph::Impl& impl, const Plug& array, PackedPatch other, int createdLevel)
      : impl_(impl),
        node_(array.node()->shared_from_this()),
        array_(array),
        other_(std::move(other)),
        made_{createdLevel} {}
  Result<void> undo() override {
    HOST_TRY(checkFit());
    const Graph::Impl::Edit edit(impl_);
    impl_.swapPacked(array_, other_);
    impl_.dropElements(array_, made_);
    return {};
  }
  Result<void> redo() override {
    HOST_TRY(checkFit());
    const Graph::Impl::Edit edit(impl_);
    impl_.bringBack(array_, made_);
    impl_.swapPacked(array_, other_);
    return {};
  }
  void visitNodes(const VisitNode& visit) const override { visit(*node_); }
  [[nodiscard]] std::size_t bytes() const override { return sizeof *this + other_.bytes(); }

 private:
  /// An element that is connected or flagged meanwhile cannot be left out.
  Result<void> checkFit() const {
    HOST_TRY(Graph::Impl::checkFree(array_));
    const Place place = locate(array_);
    if (!made_.isDropped && place.isMissing) return fail("'{}' was removed", array_.name());
    const Slot* slot = place.slot;
    if (!slot) return {};
    for (const auto& element : slot->below)
      if (isWired(*element) && other_.leavesOut(element->index))
        return fail("'{}' is in use", plugOf(*element).name());
    return {};
  }
  Graph::Impl& impl_;
  NodePtr node_;
  Plug array_;
  PackedPatch other_;
  MadeElements made_;
};

Result<void> checkArray(const Plug& array) {
  HOST_TRY(checkPlug(array));
  if (!array.isArray()) return fail(ErrorKind::BadArgument, "'{}' is not an array", array.name());
  return {};
}

Result<void> checkElement(const Plug& element) {
  HOST_TRY(checkPlug(element));
  if (!element.isElement()) return fail("'{}' is not an element of an array", element.name());
  if (element.logicalIndex() < 0)
    return fail(ErrorKind::BadArgument, "{} is not an index of '{}'", element.logicalIndex(),
                element.array().name());
  return {};
}

const Attribute& leafOf(const Attribute& array, int column) {
  return array.isCompound() ? *array.children[static_cast<std::size_t>(column)] : array;
}

/// The same layout for an array that is stored an element at a time.
PackedArray gathered(const Plug& array, int stride) {
  PackedArray result;
  result.stride = stride;
  const Slot* slot = locate(array).slot;
  if (!slot) return result;
  result.indices = existingIndices(*slot);
  result.values.reserve(result.indices.size() * static_cast<std::size_t>(stride));
  for (const Index index : result.indices) {
    for (int column = 0; column < stride; ++column) {
      const Plug leaf = array.attribute()->isCompound() ? array.element(index).child(column)
                                                        : array.element(index);
      const Value value = readLeaf(leaf, locate(leaf));
      const auto* real = std::get_if<double>(&value);
      const auto* integer = std::get_if<std::int64_t>(&value);
      result.values.push_back(real ? *real : integer ? static_cast<double>(*integer) : 0.0);
    }
  }
  return result;
}

Result<void> checkPacked(const Plug& array, const std::vector<Index>& indices,
                         const std::vector<double>& values) {
  const int stride = packedStride(*array.attribute());
  if (stride == 0)
    return fail(ErrorKind::BadArgument, "'{}' is not an array of numbers, pairs or triples",
                array.name());
  if (values.size() != indices.size() * static_cast<std::size_t>(stride))
    return fail(ErrorKind::BadArgument,
                "'{}' takes {} numbers an element: {} elements came with {} numbers", array.name(),
                stride, indices.size(), values.size());
  for (const double value : values)
    if (!std::isfinite(value))
      return fail(ErrorKind::BadArgument, "'{}' cannot hold {}", array.name(), value);
  if (!indices.empty() && indices.front() < 0)
    return fail(ErrorKind::BadArgument, "{} is not an index of '{}'", indices.front(),
                array.name());
  if (std::ranges::adjacent_find(indices, std::greater_equal<>()) != indices.end())
    return fail(ErrorKind::BadArgument, "The indices given for '{}' do not ascend", array.name());
  return {};
}

/// Rounds in place to what the elements can hold.
void roundPacked(const Attribute& array, std::vector<double>& values, int stride) {
  const auto isDouble = [&](int column) {
    const AttributeType type = leafOf(array, column).type;
    return type > AttributeType::Float && type <= AttributeType::Time;
  };
  for (int column = 0; column < stride; ++column) {
    if (isDouble(column)) continue;
    const Attribute& leaf = leafOf(array, column);
    const auto step = static_cast<std::size_t>(stride);
    for (std::size_t i = static_cast<std::size_t>(column); i < values.size(); i += step)
      values[i] = packNumber(leaf, values[i]);
  }
}

}  // namespace

int Graph::Impl::makeElements(const Plug& plug, bool wired) {
  if (!wired && plug.levels() == 0) return -1;
  const int adopted = adoptEvaluated(plug);
  const int createdLevel = makeSlot(plug, wired).createdLevel;
  if (createdLevel >= 0) {
    const Plug element = elementAtLevel(plug, createdLevel);
    spread(element.array());
    attributeEvent(AttributeEvent::ArrayElementAdded, element);
  }
  return adopted >= 0 ? adopted : createdLevel;
}

Result<void> Graph::Impl::checkCreatable(const Plug& plug) {
  if (plug.levels() == 0) return {};
  const Driver driver = driverOf(locate(plug).deepest);
  if (!driver.unit) return {};
  const std::string source = driver.slot->wiring->source.name();
  HOST_TRY(refreshArray(plugOf(*driver.unit)));
  if (locate(plug).isMissing)
    return fail("'{}' does not exist: the elements of the array come from '{}'", plug.name(),
                source);
  return {};
}

void Graph::Impl::dropElements(const Plug& plug, MadeElements& made) {
  if (made.level < 0 || made.isDropped || !isUsable(plug)) return;
  const Plug element = elementAtLevel(plug, made.level);
  made.isDropped = !locate(element).isMissing;
  if (made.isDropped) made.kept = detach(element);
}

void Graph::Impl::bringBack(const Plug& plug, MadeElements& made) {
  if (!made.isDropped) return;
  const Plug element = elementAtLevel(plug, made.level);
  // One that was made anew meanwhile is not this record's to take away again.
  if (locate(element).isMissing)
    attach(element, std::move(made.kept));
  else if (adoptEvaluated(plug) < 0)
    made.level = -1;
  made.isDropped = false;
  made.kept = {};
}

DetachedElement Graph::Impl::detach(const Plug& element) {
  Slot* array = locate(element.array()).slot;
  if (!array) return {};
  std::vector<std::unique_ptr<Change>> severed;
  if (const Slot* own = locate(element).slot) severed = severBelow(*own);
  DetachedElement detached = detachElement(*array, element.logicalIndex());
  detached.severed = std::move(severed);
  spread(element.array());
  attributeEvent(AttributeEvent::ArrayElementRemoved, element);
  return detached;
}

void Graph::Impl::attach(const Plug& element, DetachedElement detached) {
  auto severed = std::move(detached.severed);
  attachElement(*makeSlot(element.array(), true).slot, element.logicalIndex(), std::move(detached));
  restore(severed);
  spread(element.array());
  attributeEvent(AttributeEvent::ArrayElementAdded, element);
}

void Graph::Impl::swapPacked(const Plug& array, PackedArray& packed) {
  Slot& slot = *makeSlot(array, true).slot;
  if (slot.packed) {
    std::swap(*slot.packed, packed);
    matchSlotsToPacked(slot);
  } else {
    PackedArray before = gathered(array, packed.stride);
    ValueTree tree;
    tree.packed = std::make_unique<PackedArray>(std::move(packed));
    restoreValues(array, tree);
    packed = std::move(before);
  }
  spread(array);
  attributeEvent(AttributeEvent::Set, array);
}

void Graph::Impl::swapPacked(const Plug& array, PackedPatch& patch) {
  if (patch.isWhole()) return swapPacked(array, patch.whole());
  Slot& slot = *makeSlot(array, true).slot;
  patch.swapPart(*slot.packed);
  matchSlotsToPacked(slot);
  spread(array);
  attributeEvent(AttributeEvent::Set, array);
}

std::vector<Index> Graph::elementIndices(const Plug& array) {
  if (!checkArray(array)) return {};
  const Place place = locate(array);
  const Impl::Driver driver = Impl::driverOf(place.deepest);
  if (driver.slot || (place.slot && takeAwaited(*place.slot))) (void)impl_->refresh(array);
  const Slot* slot = locate(array).slot;
  return slot ? existingIndices(*slot) : std::vector<Index>();
}

Index Graph::elementCount(const Plug& array) {
  if (!checkArray(array)) return 0;
  const Place place = locate(array);
  if (Impl::driverOf(place.deepest).slot || (place.slot && takeAwaited(*place.slot)))
    (void)impl_->refresh(array);
  const Slot* slot = locate(array).slot;
  if (!slot) return 0;
  return static_cast<Index>(slot->packed ? slot->packed->indices.size() : slot->below.size());
}

Index Graph::nextFreeIndex(const Plug& array) {
  Index candidate = 0;
  const Slot* slot = checkArray(array) ? locate(array).slot : nullptr;
  if (!slot) return candidate;
  for (const auto& element : slot->below) {
    if (element->incoming + element->outgoing == 0) continue;
    if (element->index != candidate) break;
    ++candidate;
  }
  return candidate;
}

bool Graph::elementExists(const Plug& element) const {
  return checkElement(element) && !locate(element).isMissing;
}

Result<void> Graph::addElement(const Plug& element) {
  HOST_TRY(checkElement(element));
  if (isLockedHereOrAbove(element)) return fail("'{}' is locked", element.name());
  HOST_TRY(impl_->checkCreatable(element));
  const Impl::Edit edit(*impl_);
  const int createdLevel = impl_->makeElements(element, false);
  if (createdLevel >= 0) impl_->record<ElementChange>(element, createdLevel);
  return {};
}

Result<void> Graph::removeElement(const Plug& element, bool breakConnections) {
  HOST_TRY(checkElement(element));
  const Place place = locate(element);
  if (place.isMissing) return fail("'{}' does not exist", element.name());
  if (isDriven(element.array()))
    return fail("'{}' cannot be removed: the elements of the array come over a connection",
                element.name());
  if (isLockedHereOrAbove(element)) return fail("'{}' is locked", element.name());
  const Impl::Edit edit(*impl_);
  if (place.slot && place.slot->incoming + place.slot->outgoing > 0) {
    if (!breakConnections) return fail("'{}' is connected and cannot be removed", element.name());
    for (const auto& [from, to] : Impl::connectionsBelow(*place.slot, false, true)) {
      if (source(to) != from) continue;
      impl_->breakConnection(from, to, true);
      impl_->afterDisconnect(to);
    }
    if (const Slot* slot = locate(element).slot)
      for (const auto& [from, to] : Impl::connectionsBelow(*slot, true, false))
        impl_->breakConnection(from, to, false);
  }
  impl_->dropAliasesBelow(element);
  if (locate(element).isMissing) return {};  // taken along by one of the disconnections
  DetachedElement detached = impl_->detach(element);
  impl_->record<ElementChange>(element, std::move(detached));
  return {};
}

Result<void> Graph::setPacked(const Plug& array, std::vector<Index> indices,
                              std::vector<double> values) {
  HOST_TRY(checkArray(array));
  HOST_TRY(settable(array));
  HOST_TRY(checkPacked(array, indices, values));
  PackedArray packed;
  packed.stride = packedStride(*array.attribute());
  packed.indices = std::move(indices);
  packed.values = std::move(values);
  roundPacked(*array.attribute(), packed.values, packed.stride);
  std::vector<Plug> doomed;  // elements with flags of their own that the new indices leave out
  if (const Slot* slot = locate(array).slot) {
    for (const auto& element : slot->below) {
      const Plug plug = plugOf(*element);
      if (isLockedHereOrAbove(plug)) return fail("'{}' is locked", plug.name());
      if (packed.position(element->index) >= 0) continue;
      if (element->outgoing > 0)
        return fail("'{}' is connected and cannot be removed", plug.name());
      doomed.push_back(plug);
    }
  }
  const Impl::Edit edit(*impl_);
  for (const Plug& element : doomed) HOST_TRY(removeElement(element, false));
  const int createdLevel = impl_->makeElements(array, false);
  impl_->swapPacked(array, packed);
  if (isRecording())
    impl_->record<PackedChange>(
        array, PackedPatch(std::move(packed), locate(array).slot->packed.get()), createdLevel);
  return {};
}

bool Graph::getPacked(const Plug& array, std::vector<Index>& indices, std::vector<double>& values) {
  if (!checkArray(array)) return false;
  const int stride = packedStride(*array.attribute());
  if (stride == 0) return false;
  (void)impl_->refresh(array);
  const Slot* slot = locate(array).slot;
  indices.clear();
  values.clear();
  if (!slot) return true;
  if (slot->packed) {
    indices = slot->packed->indices;
    values = slot->packed->values;
    return true;
  }
  PackedArray all = gathered(array, stride);
  indices = std::move(all.indices);
  values = std::move(all.values);
  return true;
}

void Graph::dropOutputElement(const Plug& element) {
  if (!checkElement(element)) return;
  const Place place = locate(element);
  if (place.isMissing || (place.slot && place.slot->incoming + place.slot->outgoing > 0)) return;
  detachElement(*locate(element.array()).slot, element.logicalIndex());
}

}  // namespace host::dg
