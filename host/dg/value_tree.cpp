#include <algorithm>

#include "host/dg/slot.h"

namespace host::dg {

ValueTree& ValueTree::add(Index belowIndex) {
  ValueTree& tree = below.emplace_back();
  tree.index = belowIndex;
  return tree;
}

std::size_t ValueTree::bytes() const {
  std::size_t total = sizeof(ValueTree);
  if (const auto* text = std::get_if<std::string>(&value)) total += text->capacity();
  if (packed)
    total +=
        packed->indices.capacity() * sizeof(Index) + packed->values.capacity() * sizeof(double);
  for (const ValueTree& tree : below) total += tree.bytes();
  return total;
}

namespace {

void captureInto(ValueTree& tree, const Plug& plug) {
  const Place place = locate(plug);
  const Attribute& attribute = *plug.attribute();
  if (plug.isArray()) {
    if (!place.slot) return;
    if (place.slot->packed) {
      tree.packed = std::make_unique<PackedArray>(*place.slot->packed);
      return;
    }
    for (const auto& element : place.slot->below)
      captureInto(tree.add(element->index), plug.element(element->index));
    return;
  }
  if (attribute.isCompound()) {
    for (std::size_t i = 0; i < attribute.children.size(); ++i)
      captureInto(tree.add(static_cast<Index>(i)), plug.child(static_cast<int>(i)));
    return;
  }
  tree.value = readLeaf(plug, place);
}

}  // namespace

ValueTree captureValues(const Plug& plug) {
  ValueTree tree;
  captureInto(tree, plug);
  return tree;
}

namespace {

bool hasIndex(const ValueTree& tree, Index index) {
  const auto at =
      std::lower_bound(tree.below.begin(), tree.below.end(), index,
                       [](const ValueTree& entry, Index wanted) { return entry.index < wanted; });
  return at != tree.below.end() && at->index == index;
}

/// Of an attribute as an element, or of a leaf.
ValueTree defaultValues(const Attribute& attribute) {
  ValueTree tree;
  if (!attribute.isCompound()) tree.value = attribute.initialValue();
  for (const AttributePtr& child : attribute.children) {
    ValueTree& below = tree.add(child->childIndex);
    if (!child->isArray) below = defaultValues(*child);
    below.index = child->childIndex;
  }
  return tree;
}

void restoreArray(const Plug& array, const ValueTree& tree) {
  Slot& slot = *makeSlot(array, false).slot;
  if (tree.packed && slot.packed && tree.packed->stride == slot.packed->stride) {
    *slot.packed = *tree.packed;
    matchSlotsToPacked(slot);
    return;
  }
  for (const Index index : existingIndices(slot)) {
    if (tree.packed ? tree.packed->position(index) >= 0 : hasIndex(tree, index)) continue;
    const Slot* element = findElement(slot, index);
    if (element && isWired(*element))
      restoreValues(array.element(index), defaultValues(*slot.attribute));
    else
      detachElement(slot, index);
  }
  for (const ValueTree& below : tree.below) {
    makeSlot(array.element(below.index), false);
    restoreValues(array.element(below.index), below);
  }
  if (!tree.packed) return;
  for (std::size_t i = 0; i < tree.packed->indices.size(); ++i) {
    const Plug element = array.element(tree.packed->indices[i]);
    const double* numbers =
        tree.packed->values.data() + i * static_cast<std::size_t>(tree.packed->stride);
    ValueTree row;
    if (!element.isCompound()) row.value = *numbers;
    for (Index column = 0; element.isCompound() && column < tree.packed->stride; ++column)
      row.add(column).value = numbers[column];
    makeSlot(element, false);
    restoreValues(element, row);
  }
}

}  // namespace

void restoreValues(const Plug& plug, const ValueTree& tree) {
  if (plug.isArray()) {
    restoreArray(plug, tree);
    return;
  }
  if (plug.isCompound()) {
    const auto count = static_cast<Index>(plug.attribute()->children.size());
    for (const ValueTree& below : tree.below)
      if (below.index < count) restoreValues(plug.child(below.index), below);
    return;
  }
  if (plug.attribute()->type == AttributeType::Message) return;
  if (auto converted = plug.attribute()->convert(tree.value))
    writeLeaf(plug, *std::move(converted));
}

}  // namespace host::dg
