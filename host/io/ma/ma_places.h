#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/io/ma/ma_writer.h"

namespace host::io {

/// Which places of the nodes a file holds: all of them, or those of a part.
///
/// In a file with a part the places of a node are numbered anew, as whoever opens it will count.
class WrittenPlaces {
 public:
  /// @param only outlives this; null: all places are written
  explicit WrittenPlaces(const MaPart* only) : only_(only) {}

  /// Whether a node is written under a parent of its (null: the world).
  [[nodiscard]] bool has(const dg::Node& child, const dg::Node* parent) const;
  /// The parents under which a node is written, in their order.
  [[nodiscard]] std::vector<dg::Node*> parents(const dg::Node& node) const;
  /// The first of them; null for the world and for a node that is nowhere.
  [[nodiscard]] dg::Node* firstParent(const dg::Node& node) const;
  /// Whether the first of them is this one (null: the world).
  [[nodiscard]] bool hasFirst(const dg::Node& node, const dg::Node* parent) const;
  /// The names down to a node over first parents.
  [[nodiscard]] std::string fullName(const dg::Node& node) const;
  /// What a plug is in the file: where its elements go by places, that of the new number. None for
  /// a place that is not written.
  [[nodiscard]] std::optional<dg::Plug> inFile(const dg::Plug& plug) const;

 private:
  [[nodiscard]] std::uint64_t countOf(const dg::Node& node) const;
  const MaPart* only_;
  mutable std::unordered_map<const dg::Node*, std::uint64_t> counts_;
};

}  // namespace host::io
