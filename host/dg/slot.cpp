#include "host/dg/slot.h"

#include <algorithm>

#include "host/dg/packed_view.h"

namespace host::dg {
namespace {

/// On the main thread only, as all of the graph.
std::uint64_t lastContent = 0;

double asNumber(const Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  return 0.0;
}

const Attribute& packedLeaf(const Attribute& array, int column) {
  return array.isCompound() ? *array.children[static_cast<std::size_t>(column)] : array;
}

auto lowerElement(const Slot& array, Index index) {
  return std::lower_bound(
      array.below.begin(), array.below.end(), index,
      [](const auto& element, Index wanted) { return element->index < wanted; });
}

/// Whether a compound above is driven, with no array in between: then the slot is fetched on its
/// own.
bool isDrivenFromAbove(const Slot* parent) {
  for (const Slot* above = parent; above && !above->isArray; above = above->parent)
    if (above->isDriven()) return true;
  return false;
}

void stepDown(const Plug& plug, const Attribute* attribute, int& level, Place& place) {
  const Slot* above = nullptr;
  if (attribute->parent) {
    stepDown(plug, attribute->parent, level, place);
    above = place.slot;
    const auto child = static_cast<std::size_t>(attribute->childIndex);
    place.slot = above && child < above->below.size() ? above->below[child].get() : nullptr;
  } else {
    const auto& slots = NodeAccess::slots(*plug.node());
    const auto top = static_cast<std::size_t>(attribute->topIndex);
    place.slot = top < slots.size() ? slots[top].get() : nullptr;
    HOST_ASSERT(!place.slot || place.slot->attribute == attribute,
                "the plug's attribute is not of its node");
  }
  if (place.slot) place.deepest = place.slot;
  if (!attribute->isArray) return;
  const Index index = plug.index(level++);
  if (index == kNone) {
    if (attribute == plug.attribute()) return;
    place.isMissing = true;
    place.slot = nullptr;
    return;
  }
  Slot* array = place.slot;
  place.slot = array ? findElement(*array, index) : nullptr;
  if (place.slot) place.deepest = place.slot;
  if (array && array->packed) {
    place.packedIn = array;
    place.position = array->packed->position(index);
    place.isMissing = place.isMissing || place.position < 0;
  } else {
    place.isMissing = place.isMissing || !place.slot;
  }
}

Slot& makeElement(Slot& array, Index index) {
  const auto at = lowerElement(array, index);
  if (at != array.below.end() && (*at)->index == index) return **at;
  auto element = std::make_unique<Slot>(*array.node, *array.attribute, &array, index, false);
  return **array.below.insert(at, std::move(element));
}

/// As makeSlot; null once the way entered a packed array that gets no slots.
Slot* makeDown(const Plug& plug, const Attribute* attribute, int& level, bool wired, Made& made) {
  Slot* slot = nullptr;
  if (attribute->parent) {
    Slot* above = makeDown(plug, attribute->parent, level, wired, made);
    if (!above) return nullptr;
    if (above->below.empty()) above->below.resize(above->attribute->children.size());
    auto& child = above->below[static_cast<std::size_t>(attribute->childIndex)];
    if (!child)
      child = std::make_unique<Slot>(*plug.node(), *attribute, above, kNone, attribute->isArray);
    slot = child.get();
  } else {
    auto& slots = NodeAccess::slots(*plug.node());
    const auto top = static_cast<std::size_t>(attribute->topIndex);
    if (top >= slots.size())
      slots.resize(std::max(top + 1, plug.node()->type().attributes().size()));
    if (!slots[top])
      slots[top] =
          std::make_unique<Slot>(*plug.node(), *attribute, nullptr, kNone, attribute->isArray);
    slot = slots[top].get();
  }
  made.slot = slot;
  if (!attribute->isArray) return slot;
  const Index index = plug.index(level++);
  if (index == kNone) return slot;
  const auto noteCreated = [&] {
    if (made.createdLevel < 0) made.createdLevel = level - 1;
  };
  if (slot->packed) {
    if (slot->packed->position(index) < 0) {
      slot->packed->insert(index, *attribute);
      noteCreated();
    }
    if (!wired) return nullptr;
  } else if (!findElement(*slot, index)) {
    noteCreated();
  }
  Slot& element = makeElement(*slot, index);
  made.slot = &element;
  return &element;
}

}  // namespace

std::ptrdiff_t PackedArray::position(Index index) const {
  if (index < 0) return -1;
  const auto direct = static_cast<std::size_t>(index);
  if (direct < indices.size() && indices[direct] == index) return index;
  const auto found = std::lower_bound(indices.begin(), indices.end(), index);
  return found != indices.end() && *found == index ? found - indices.begin() : -1;
}

std::uint64_t PackedArray::newContent() {
  return ++lastContent;
}

std::ptrdiff_t PackedArray::insert(Index index, const Attribute& attribute) {
  content = newContent();
  const auto at = std::lower_bound(indices.begin(), indices.end(), index) - indices.begin();
  indices.insert(indices.begin() + at, index);
  values.insert(values.begin() + at * stride, static_cast<std::size_t>(stride), 0.0);
  for (int column = 0; column < stride; ++column)
    this->at(at)[column] = asNumber(packedLeaf(attribute, column).initialValue());
  return at;
}

void PackedArray::erase(std::ptrdiff_t position) {
  content = newContent();
  std::erase(evaluated, indices[static_cast<std::size_t>(position)]);
  indices.erase(indices.begin() + position);
  values.erase(values.begin() + position * stride, values.begin() + (position + 1) * stride);
}

void PackedArray::erase(const std::vector<Index>& gone) {
  if (gone.empty()) return;
  content = newContent();
  const auto isGone = [&](Index index) { return std::ranges::binary_search(gone, index); };
  std::size_t kept = 0;
  const auto width = static_cast<std::size_t>(stride);
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (isGone(indices[i])) continue;
    indices[kept] = indices[i];
    std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(i * width), width,
                values.begin() + static_cast<std::ptrdiff_t>(kept * width));
    ++kept;
  }
  indices.resize(kept);
  values.resize(kept * width);
  std::erase_if(evaluated, isGone);
}

Slot::Slot(Node& nodeIn, const Attribute& attributeIn, Slot* parentIn, Index indexIn,
           bool isArrayIn)
    : node(&nodeIn), attribute(&attributeIn), parent(parentIn), index(indexIn), isArray(isArrayIn) {
  if (isArray && !node->type().isComputed(attribute) && packedStride(*attribute) > 0) {
    packed = std::make_unique<PackedArray>();
    packed->stride = packedStride(*attribute);
  }
  if (isLeaf()) value = attribute->initialValue();
  if (isLeaf() || isArray)
    isDirty = startsDirty(node->type(), *attribute) || isDrivenFromAbove(parent);
}

bool startsDirty(const NodeType& type, const Attribute& attribute) {
  if (!attribute.isDynamic) return type.isComputed(&attribute);
  for (const NodeType* each = &type; each; each = each->base)
    if (each->dependentsDirty) return true;
  return false;
}

bool isUsable(const Plug& plug) {
  return !plug.isNull() && plug.node()->isAlive() && plug.attribute()->topIndex >= 0;
}

Result<void> checkPlug(const Plug& plug) {
  if (plug.isNull()) return fail(ErrorKind::NotFound, "There is no such attribute");
  if (!plug.node()->isAlive()) return fail("Node '{}' is deleted", plug.node()->name());
  if (!isUsable(plug)) return fail("'{}' was removed", plug.name());
  if (!plug.isComplete())
    return fail(ErrorKind::BadArgument, "'{}' needs the index of an element", plug.name());
  return {};
}

Wiring& Slot::wires() {
  if (!wiring) wiring = std::make_unique<Wiring>();
  return *wiring;
}

Place locate(const Plug& plug) {
  Place place;
  int level = 0;
  stepDown(plug, plug.attribute(), level, place);
  return place;
}

Made makeSlot(const Plug& plug, bool wired) {
  Made made{nullptr, -1};
  int level = 0;
  makeDown(plug, plug.attribute(), level, wired, made);
  return made;
}

Plug plugOf(const Slot& slot) {
  Plug plug(slot.node, slot.attribute);
  int level = plug.levels() - 1;
  for (const Slot* s = &slot; s; s = s->parent) {
    if (s->isArray && s == &slot) --level;  // an array's own index stays missing
    if (s->index != kNone) plug = plug.withIndex(level--, s->index);
  }
  return plug;
}

Plug elementAtLevel(const Plug& plug, int level) {
  Plug result = plug;
  while (!result.attribute()->isArray || result.levels() - 1 != level) result = result.parent();
  return result;
}

bool isAtOrBelow(const Plug& plug, const Plug& above) {
  for (Plug p = plug; p; p = p.isElement() ? p.array() : p.parent())
    if (p == above) return true;
  return false;
}

Plug correspondingPlug(const Plug& base, const Attribute* from, const Attribute* to) {
  if (from == to) return base;
  const Plug above = correspondingPlug(base, from, to->parent);
  // A generic end takes a compound whole: its parts have no counterparts there.
  return above.attribute()->isCompound() ? above.child(to->childIndex) : above;
}

Value readLeaf(const Plug& plug, const Place& place) {
  if (place.packedIn) {
    if (place.position < 0) return plug.attribute()->initialValue();
    const bool isElement = plug.attribute() == place.packedIn->attribute;
    const int column = isElement ? 0 : plug.attribute()->childIndex;
    return unpack(*plug.attribute(), place.packedIn->packed->at(place.position)[column]);
  }
  return place.slot ? place.slot->value : plug.attribute()->initialValue();
}

void writeLeaf(const Plug& plug, Value value) {
  Place place = locate(plug);
  if (place.isMissing || (!place.slot && !place.packedIn)) {
    makeSlot(plug, false);
    place = locate(plug);
  }
  if (!place.packedIn) {
    place.slot->value = std::move(value);
    return;
  }
  const bool isElement = plug.attribute() == place.packedIn->attribute;
  const int column = isElement ? 0 : plug.attribute()->childIndex;
  place.packedIn->packed->content = PackedArray::newContent();
  place.packedIn->packed->at(place.position)[column] = asNumber(value);
}

int packedStride(const Attribute& attribute) {
  const auto isPackable = [](const Attribute& leaf) {
    return leaf.isNumeric() && leaf.type != AttributeType::Int64 && !leaf.internalStorage;
  };
  if (!attribute.isArray) return 0;
  if (!attribute.isCompound()) return isPackable(attribute) ? 1 : 0;
  if (attribute.children.empty() || attribute.children.size() > 3) return 0;
  for (const AttributePtr& child : attribute.children)
    if (child->isArray || !isPackable(*child)) return 0;
  return static_cast<int>(attribute.children.size());
}

Value unpack(const Attribute& leaf, double number) {
  if (leaf.type >= AttributeType::Float && leaf.type <= AttributeType::Time) return number;
  return static_cast<std::int64_t>(number);
}

double packNumber(const Attribute& leaf, double number) {
  if (leaf.type == AttributeType::Float) return static_cast<double>(static_cast<float>(number));
  if (leaf.type > AttributeType::Float && leaf.type <= AttributeType::Time) return number;
  const auto converted = leaf.convert(Value(number));
  return converted ? asNumber(*converted) : 0.0;
}

Slot* findElement(const Slot& array, Index index) {
  const auto direct = static_cast<std::size_t>(index);
  if (direct < array.below.size() && array.below[direct]->index == index)
    return array.below[direct].get();
  const auto at = lowerElement(array, index);
  return at != array.below.end() && (*at)->index == index ? at->get() : nullptr;
}

std::vector<Index> existingIndices(const Slot& array) {
  if (array.packed) return array.packed->indices;
  std::vector<Index> result;
  result.reserve(array.below.size());
  for (const auto& element : array.below) result.push_back(element->index);
  return result;
}

bool isWired(const Slot& slot) {
  if (slot.incoming > 0 || slot.outgoing > 0 || (slot.wiring && slot.wiring->flagMask != 0))
    return true;
  return std::ranges::any_of(slot.below,
                             [](const auto& below) { return below && isWired(*below); });
}

void matchSlotsToPacked(Slot& array) {
  std::erase_if(array.below, [&](const auto& element) {
    if (array.packed->position(element->index) >= 0) return false;
    if (!isWired(*element)) return true;
    array.packed->insert(element->index, *array.attribute);
    return false;
  });
}

DetachedElement detachElement(Slot& array, Index index) {
  DetachedElement result;
  if (array.packed) {
    const std::ptrdiff_t position = array.packed->position(index);
    if (position >= 0) {
      const double* values = array.packed->at(position);
      result.packed.assign(values, values + array.packed->stride);
      result.isEvaluated = std::ranges::binary_search(array.packed->evaluated, index);
      array.packed->erase(position);
    }
  }
  const auto at = lowerElement(array, index);
  if (at != array.below.end() && (*at)->index == index) {
    const auto own = array.below.begin() + (at - array.below.begin());
    result.slot = std::move(*own);
    array.below.erase(own);
    result.slot->parent = nullptr;
  }
  return result;
}

void attachElement(Slot& array, Index index, DetachedElement element) {
  if (array.packed && array.packed->position(index) < 0) {
    const std::ptrdiff_t position = array.packed->insert(index, *array.attribute);
    std::copy(element.packed.begin(), element.packed.end(), array.packed->at(position));
    if (element.isEvaluated) {
      std::vector<Index>& known = array.packed->evaluated;
      known.insert(std::ranges::lower_bound(known, index), index);
    }
  }
  if (!element.slot || findElement(array, index)) return;
  element.slot->parent = &array;
  array.below.insert(lowerElement(array, index), std::move(element.slot));
}

std::optional<PackedView> packedView(const Plug& array) {
  if (!isUsable(array) || !array.isArray()) return std::nullopt;
  const Place place = locate(array);
  if (!place.slot) return place.isMissing ? std::nullopt : std::optional(PackedView{});
  const Slot& slot = *place.slot;
  if (!slot.packed || slot.incoming > 0 || slot.isDirty || isDrivenFromAbove(slot.parent))
    return std::nullopt;
  return PackedView{slot.packed->indices, slot.packed->values, slot.packed->content};
}

std::uint64_t nextPackedContent() {
  return lastContent + 1;
}

}  // namespace host::dg
