#include "host/dg/evaluated_elements.h"
#include "host/dg/graph_impl.h"

namespace host::dg {
namespace {

std::uint64_t hashText(std::string_view text, std::uint64_t seed) {
  return hashBytes(text.data(), text.size(), seed);
}

std::uint64_t hashPlug(const Plug& plug, std::uint64_t seed) {
  return hashText(plug.name(), seed);
}

/// Gathers one node's digest, slot by slot. Slots that hold nothing but defaults add nothing, so
/// that it does not matter which ones were made.
class NodeHash {
 public:
  explicit NodeHash(const Node& node) : node_(node) {}

  void add(const Slot& slot, bool isDriven) {
    isDriven = isDriven || slot.isDriven();
    const bool isCache = isDriven || slot.isOutput || node_.type().isComputed(slot.attribute);
    addWiring(slot);
    if (slot.isArray && !isCache) addElements(slot);
    if (slot.isLeaf() && !isCache && !isInPackedArray(slot)) addLeaf(slot);
    for (const auto& below : slot.below)
      if (below) add(*below, isDriven);
  }
  void mix(std::uint64_t word) { result_ = hashBytes(&word, sizeof word, result_); }
  [[nodiscard]] std::uint64_t result() const { return result_; }

 private:
  static bool isInPackedArray(const Slot& slot) {
    for (const Slot* above = slot.parent; above; above = above->parent)
      if (above->packed) return true;
    return false;
  }

  void addWiring(const Slot& slot) {
    if (!slot.wiring) return;
    const Wiring& wiring = *slot.wiring;
    const Plug plug = plugOf(slot);
    if (wiring.source) mix(hashPlug(plug, hashPlug(wiring.source, 1)));
    for (const Plug& destination : wiring.destinations)
      mix(hashPlug(plug, hashPlug(destination, 2)));
    if (wiring.flagMask != 0)
      mix(hashPlug(plug, static_cast<std::uint64_t>(wiring.flagMask) << 8 |
                             (wiring.flagMask & wiring.flagBits)));
  }

  void addElements(const Slot& slot) {
    const std::vector<Index> indices = ownIndices(slot);
    if (indices.empty()) return;
    mix(hashPlug(plugOf(slot), hashBytes(indices.data(), indices.size() * sizeof(Index), 3)));
    if (!slot.packed) return;
    if (slot.packed->evaluated.empty() && slot.incoming == 0) {
      const std::vector<double>& all = slot.packed->values;
      mix(hashBytes(all.data(), all.size() * sizeof(double), 4));
      return;
    }
    // As if those that a computation made were not there.
    std::vector<double> values;
    std::vector<std::uint8_t> isDriven;
    const auto stride = static_cast<std::size_t>(slot.packed->stride);
    for (const Index index : indices) {
      const auto first = static_cast<std::size_t>(slot.packed->position(index)) * stride;
      for (std::size_t i = first; i < first + stride; ++i) {
        values.push_back(slot.packed->values[i]);
        if (slot.incoming > 0) isDriven.push_back(isElementDriven(slot, i) ? 1 : 0);
      }
    }
    if (slot.incoming == 0) {
      mix(hashBytes(values.data(), values.size() * sizeof(double), 4));
      return;
    }
    for (std::size_t i = 0; i < values.size(); ++i)
      if (!isDriven[i]) mix(hashBytes(&values[i], sizeof(double), i));
  }

  /// Whether the number at a position of a packed array is fetched over a connection.
  static bool isElementDriven(const Slot& array, std::size_t position) {
    const auto stride = static_cast<std::size_t>(array.packed->stride);
    const Slot* element = findElement(array, array.packed->indices[position / stride]);
    if (!element || element->incoming == 0) return false;
    if (element->isDriven()) return true;
    const std::size_t column = position % stride;
    return column < element->below.size() && element->below[column] &&
           element->below[column]->isDriven();
  }

  void addLeaf(const Slot& slot) {
    const Plug plug = plugOf(slot);
    const Value value = Graph::Impl::current(plug);
    if (!equal(value, slot.attribute->initialValue())) mix(hashPlug(plug, hash(value)));
  }

  const Node& node_;
  std::uint64_t result_ = 0;
};

}  // namespace

std::uint64_t Graph::storedHash(const Node& node) const {
  NodeHash digest(node);
  digest.mix(hashText(node.name(),
                      hashText(node.type().name, hashText(node.uuid(), node.isLocked() ? 1 : 0))));
  for (const AttributePtr& attribute : node.dynamicAttributes())
    digest.mix(hashText(attribute->longName, hashText(attribute->typeWord(), 0)));
  for (const auto& [alias, plug] : Impl::aliases(node))
    digest.mix(hashPlug(plug, hashText(alias, 5)));
  for (const auto& slot : NodeAccess::slots(node))
    if (slot) digest.add(*slot, false);
  return digest.result();
}

}  // namespace host::dg
