#pragma once

#include <array>
#include <string>

#include "host/base/assert.h"
#include "host/base/ids.h"
#include "host/dg/attribute.h"

namespace host::dg {

class Node;

/// Address of a value: node, attribute, and a logical index for each array level on the way. The
/// last index may be missing (kNone): then the plug is the array itself. A plain value; it does not
/// keep the node alive.
class Plug {
 public:
  static constexpr int kMaxLevels = 5;

  Plug() = default;
  /// The plug of an attribute with no index given yet: an array attribute's plug is the array.
  Plug(Node* node, const Attribute* attribute);

  [[nodiscard]] bool isNull() const { return attribute_ == nullptr; }
  explicit operator bool() const { return !isNull(); }
  [[nodiscard]] Node* node() const { return node_; }
  [[nodiscard]] const Attribute* attribute() const { return attribute_; }

  /// Whether this is an array as a whole (its own index is missing).
  [[nodiscard]] bool isArray() const { return attribute_->isArray && index(levels_ - 1) == kNone; }
  [[nodiscard]] bool isElement() const { return attribute_->isArray && !isArray(); }
  [[nodiscard]] bool isCompound() const { return attribute_->isCompound() && !isArray(); }
  /// Whether all indices are given, but for an array's own.
  [[nodiscard]] bool isComplete() const;

  [[nodiscard]] int levels() const { return levels_; }
  [[nodiscard]] Index index(int level) const { return indices_[at(level)]; }
  /// The last index given or missing; kNone where there is no array on the way.
  [[nodiscard]] Index logicalIndex() const { return levels_ > 0 ? index(levels_ - 1) : kNone; }

  [[nodiscard]] Plug element(Index logicalIndex) const;  ///< of an array plug
  [[nodiscard]] Plug array() const;                      ///< of an element plug
  [[nodiscard]] Plug child(int childIndex) const;        ///< of a compound plug
  [[nodiscard]] Plug child(const Attribute* attribute) const;
  [[nodiscard]] Plug parent() const;  ///< the compound above; null at the top level
  /// With the index of one level replaced: the way to address under arrays of compounds.
  [[nodiscard]] Plug withIndex(int level, Index logicalIndex) const;

  /// "attr[2].child", without the node's name.
  [[nodiscard]] std::string attributePath(bool shortNames = false) const;
  /// "node.attr[2].child".
  [[nodiscard]] std::string name() const;

  friend bool operator==(const Plug&, const Plug&) = default;

 private:
  Node* node_ = nullptr;
  const Attribute* attribute_ = nullptr;
  std::array<Index, kMaxLevels> indices_{kNone, kNone, kNone, kNone, kNone};
  int levels_ = 0;
};

struct PlugHash {
  [[nodiscard]] std::size_t operator()(const Plug& plug) const;
};

}  // namespace host::dg
