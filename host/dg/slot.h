#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/dg/change.h"
#include "host/dg/node.h"

// Storage of values and connections, private to this folder.

namespace host::dg {

/// The elements of an array of numbers or of numeric pairs and triples, contiguous.
struct PackedArray {
  std::vector<Index> indices;  ///< ascending logical indices
  std::vector<double> values;  ///< `stride` for each index
  int stride = 1;
  std::vector<Index> evaluated;  ///< of these, those that a computation made (evaluated_elements.h)
  /// Arrays of the same number hold the same; whoever writes into one gives it a new one.
  std::uint64_t content = newContent();

  /// Position of a logical index, -1 when it is not there. Constant time while the indices have no
  /// gaps.
  [[nodiscard]] std::ptrdiff_t position(Index index) const;
  [[nodiscard]] double* at(std::ptrdiff_t position) { return values.data() + position * stride; }
  /// Makes an element with the attribute's defaults; returns its position.
  std::ptrdiff_t insert(Index index, const Attribute& attribute);
  void erase(std::ptrdiff_t position);
  /// Takes elements out, ascending indices, in one pass.
  void erase(const std::vector<Index>& gone);

  [[nodiscard]] static std::uint64_t newContent();
};

/// What only few plugs have: connections and flags that differ from the attribute's.
struct Wiring {
  Plug source;
  std::vector<Plug> destinations;
  std::uint8_t flagMask = 0, flagBits = 0;  ///< a bit for each Graph::PlugFlag
};

/// Storage of one plug, made when first needed: a leaf, a compound with its children, or an array
/// with its elements. The value of a leaf in a packed array lives in the array; such a leaf has a
/// slot only to hold wiring.
struct Slot {
  Slot(Node& nodeIn, const Attribute& attributeIn, Slot* parentIn, Index indexIn, bool isArrayIn);

  [[nodiscard]] bool isLeaf() const { return !isArray && !attribute->isCompound(); }
  [[nodiscard]] bool isDriven() const { return wiring && wiring->source; }
  Wiring& wires();

  Node* node;
  const Attribute* attribute;
  Slot* parent;
  Index index;   ///< of an element, else kNone
  bool isArray;  ///< the array as a whole
  /// The value has to be fetched or computed before it is read. On leaves; on an array when it is
  /// computed or driven as a whole. Compounds and other arrays are as dirty as what is below.
  bool isDirty = false;
  bool isEvaluating = false;
  bool isOutput = false;     ///< the value was written by a computation, not by an edit
  bool isEvaluated = false;  ///< an element that a computation made (evaluated_elements.h)
  bool isAwaited = false;    ///< an array whose evaluated elements went with a step of undo
  std::int32_t incoming = 0, outgoing = 0;  ///< connections of the plug and of all below
  Value value;
  std::vector<std::unique_ptr<Slot>>
      below;  ///< a compound's children, null or all; an array's elements, ascending
  std::unique_ptr<PackedArray>
      packed;  ///< on arrays that are packed; `below` then has the wired elements only
  std::unique_ptr<Wiring> wiring;
};

/// Lets this folder's functions reach the storage of a node.
struct NodeAccess {
  static std::vector<std::unique_ptr<Slot>>& slots(Node& node) { return node.slots_; }
  static const std::vector<std::unique_ptr<Slot>>& slots(const Node& node) { return node.slots_; }
};

/// Whether a value that nobody looked at has to be computed: outputs, and dynamic attributes where
/// the type may compute them, which only its `dependentsDirty` knows.
[[nodiscard]] bool startsDirty(const NodeType& type, const Attribute& attribute);

/// Whether node and attribute are there; they may not be when an edit without a record came between
/// a record's two.
[[nodiscard]] bool isUsable(const Plug& plug);
/// The same, and that all indices are given; an error says what is wrong.
[[nodiscard]] Result<void> checkPlug(const Plug& plug);

/// Where a plug's value is.
struct Place {
  Slot* slot = nullptr;          ///< the plug's own, if it was made
  Slot* deepest = nullptr;       ///< the nearest one made on the way down to it
  Slot* packedIn = nullptr;      ///< the packed array on the way
  std::ptrdiff_t position = -1;  ///< of the element in it
  bool isMissing = false;  ///< an element on the way does not exist, or its index is not given
};
[[nodiscard]] Place locate(const Plug& plug);

/// Makes the elements on the way to a plug, and its slot. With `wired` false, packed elements get
/// no slot of their own.
/// @return the deepest slot, and the first array level at which an element was missing, or -1.
struct Made {
  Slot* slot;
  int createdLevel;
};
Made makeSlot(const Plug& plug, bool wired);

[[nodiscard]] Plug plugOf(const Slot& slot);
/// The element on the way to `plug` at an array level.
[[nodiscard]] Plug elementAtLevel(const Plug& plug, int level);
[[nodiscard]] bool isAtOrBelow(const Plug& plug, const Plug& above);
/// Follows child indices: the plug below `base` that corresponds to `to`, an attribute at or below
/// `from` with no array between them other than `to` itself.
[[nodiscard]] Plug correspondingPlug(const Plug& base, const Attribute* from, const Attribute* to);

/// Reads and writes what is stored for a leaf, with no evaluation. Writing makes the elements on
/// the way.
[[nodiscard]] Value readLeaf(const Plug& plug, const Place& place);
void writeLeaf(const Plug& plug, Value value);

/// Number of doubles an element of this array attribute packs to; 0 when it cannot be packed.
[[nodiscard]] int packedStride(const Attribute& attribute);
/// A packed number as the value of a leaf of the attribute's type, and back.
[[nodiscard]] Value unpack(const Attribute& leaf, double number);
[[nodiscard]] double packNumber(const Attribute& leaf, double number);

/// Whether a slot, or one below it, holds a connection or a flag.
[[nodiscard]] bool isWired(const Slot& slot);
/// After the packed values of an array were replaced: drops the slots of elements that are gone. A
/// wired element stays, with its defaults.
void matchSlotsToPacked(Slot& array);

/// What a deleted element leaves behind, so that it can come back.
struct DetachedElement {
  std::unique_ptr<Slot> slot;
  std::vector<double> packed;
  bool isEvaluated = false;                      ///< of a packed one
  std::vector<std::unique_ptr<Change>> severed;  ///< connections that went with it
};
DetachedElement detachElement(Slot& array, Index index);
void attachElement(Slot& array, Index index, DetachedElement element);
[[nodiscard]] Slot* findElement(const Slot& array, Index index);
[[nodiscard]] std::vector<Index> existingIndices(const Slot& array);

/// The stored values of a plug and of all below it.
struct ValueTree {
  Index index = kNone;  ///< of a child or an element
  Value value;
  std::vector<ValueTree> below;  ///< ascending indices
  std::unique_ptr<PackedArray> packed;

  ValueTree& add(Index belowIndex);
  [[nodiscard]] std::size_t bytes() const;
};
[[nodiscard]] ValueTree captureValues(const Plug& plug);
/// Puts captured values back, converting them to the types found there. Elements that the tree
/// lacks are removed; wired ones stay, with their defaults.
void restoreValues(const Plug& plug, const ValueTree& tree);

/// Visits the slot and all below it; `visit(slot)`.
template <class Visit>
void visitSlots(Slot& slot, const Visit& visit) {
  visit(slot);
  for (const auto& below : slot.below)
    if (below) visitSlots(*below, visit);
}

}  // namespace host::dg
