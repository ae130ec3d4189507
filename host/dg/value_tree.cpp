#include <algorithm>

#include "host/dg/slot.h"

namespace host::dg {
std::size_t ValueTree::bytes() const {
  std::size_t total = sizeof(ValueTree);
  if (const auto* text = std::get_if<std::string>(&value)) total += text->capacity();
  if (packed) total += packed->indices.capacity() * sizeof(Index) + packed->values.capacity() * sizeof(double);
  for (const auto& [index, tree] : below) total += sizeof(Index) + tree.bytes();
  return total;
}

ValueTree captureValues(const Plug& plug) {
  const Place place = locate(plug);
  const Attribute& attribute = *plug.attribute();
  ValueTree tree;
  if (plug.isArray()) {
    if (!place.slot) return tree;
    if (place.slot->packed) {
      tree.packed = std::make_unique<PackedArray>(*place.slot->packed);
      return tree;
    }
    for (const auto& element : place.slot->below)
      tree.below.emplace_back(element->index, captureValues(plug.element(element->index)));
    return tree;
  }
  if (attribute.isCompound()) {
    for (std::size_t i = 0; i < attribute.children.size(); ++i)
      tree.below.emplace_back(static_cast<Index>(i), captureValues(plug.child(static_cast<int>(i))));
    return tree;
  }
  tree.value = readLeaf(plug, place);
  return tree;
}

namespace {

bool hasIndex(const ValueTree& tree, Index index) {
  const auto at = std::lower_bound(tree.below.begin(), tree.below.end(), index,
                                   [](const auto& entry, Index wanted) { return entry.first < wanted; });
  return at != tree.below.end() && at->first == index;
}

void restoreArray(const Plug& array, const ValueTree& tree) {
  Slot& slot = *makeSlot(array, false).slot;
  if (tree.packed && slot.packed && tree.packed->stride == slot.packed->stride) {
    // Wired elements stay, whatever the tree says.
    PackedArray next = *tree.packed;
    for (const auto& wired : slot.below) {
      if (next.position(wired->index) >= 0) continue;
      const std::ptrdiff_t from = slot.packed->position(wired->index);
      const std::ptrdiff_t to = next.insert(wired->index, *slot.attribute);
      std::copy_n(slot.packed->at(from), next.stride, next.at(to));
    }
    *slot.packed = std::move(next);
    return;
  }
  for (const Index index : existingIndices(slot)) {
    const Slot* element = findElement(slot, index);
    if (element && (element->incoming > 0 || element->outgoing > 0 || element->wiring)) continue;
    const bool isKept = tree.packed ? tree.packed->position(index) >= 0
                                    : hasIndex(tree, index);
    if (!isKept) detachElement(slot, index);
  }
  for (const auto& [index, below] : tree.below) {
    makeSlot(array.element(index), false);
    restoreValues(array.element(index), below);
  }
  if (!tree.packed) return;
  for (std::size_t i = 0; i < tree.packed->indices.size(); ++i) {
    const Plug element = array.element(tree.packed->indices[i]);
    const double* numbers = tree.packed->values.data() + i * static_cast<std::size_t>(tree.packed->stride);
    ValueTree row;
    if (!element.isCompound()) row.value = *numbers;
    if (element.isCompound()) row.below.resize(static_cast<std::size_t>(tree.packed->stride));
    for (std::size_t column = 0; column < row.below.size(); ++column) {
      row.below[column].first = static_cast<Index>(column);
      row.below[column].second.value = numbers[column];
    }
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
    for (const auto& [index, below] : tree.below)
      if (index < count) restoreValues(plug.child(index), below);
    return;
  }
  if (plug.attribute()->type == AttributeType::Message) return;
  if (auto converted = plug.attribute()->convert(tree.value)) writeLeaf(plug, *std::move(converted));
}

}  // namespace host::dg
