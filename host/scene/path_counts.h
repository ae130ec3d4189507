#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "host/scene/dag.h"

// How paths are counted where nodes have several parents, private to this folder. On the main
// thread only, as all of the document.

namespace host::scene {

/// Counts stop growing at 2^62.
[[nodiscard]] std::uint64_t sumOfPaths(std::uint64_t a, std::uint64_t b);

/// The parents of a node that has many, to look them up by address and by number of path.
class ParentIndex {
 public:
  explicit ParentIndex(const Node& node);
  /// Where a parent stands; past the end when it is none.
  [[nodiscard]] std::size_t positionOf(const Node* parent) const;
  /// How many paths come over the parents before this one.
  [[nodiscard]] std::uint64_t pathsBefore(std::size_t position) const { return before_[position]; }
  /// The parent over which the path of a number comes; past the end when there is none.
  [[nodiscard]] std::size_t parentOf(std::uint64_t number) const;

 private:
  std::vector<std::pair<const Node*, std::size_t>> places_;  ///< by address
  std::vector<std::uint64_t> before_;                        ///< of each parent, and of the end
};

/// Null for a node of few parents, and for one of many that nobody asked about more than a few
/// times since the hierarchy changed: then going through them is cheaper. Good until the next
/// change.
[[nodiscard]] const ParentIndex* parentIndex(const Node& node);

}  // namespace host::scene
