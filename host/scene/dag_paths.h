#pragma once

#include <cstdint>

#include "host/scene/dag.h"

namespace host::scene {

// Paths by number. Instances within instances multiply: forty levels of two have 10^12 paths. So
// paths are counted, numbered and named without making a list of them.

/// How many paths lead to a node; 2^62 stands for that many or more. Without instances in the scene
/// constant, else linear in what is above, once after each change of the hierarchy.
[[nodiscard]] std::uint64_t pathCount(const Node& node);

/// Whether any node of a scene has several parents.
[[nodiscard]] bool isAnythingInstanced();

/// Lists of paths end here, with a warning.
constexpr std::uint64_t kMostPaths = 100'000;

/// Whether `parent` (null: the world) is one of a node's parents. Looks through the shorter of the
/// two lists in which the link stands: one node may have 100,000 parents.
[[nodiscard]] bool isUnder(const Node& child, const Node* parent);

/// The parent that path number `number` comes from, and the number of that one's path; a null
/// parent is the world. `isThere` is false when the node has no such path.
struct PathAbove {
  Node* parent = nullptr;
  std::uint64_t number = 0;
  bool isThere = false;
};
[[nodiscard]] PathAbove pathAbove(const Node& node, std::uint64_t number);

/// The place of a path in `allPaths` of its leaf. Linear in its length; among many parents the
/// first few times after a change of the hierarchy linear in them, then logarithmic.
[[nodiscard]] std::uint64_t pathNumber(const DagPath& path);
/// How much of that comes from the last step: the number of a path is that of its parent and this.
[[nodiscard]] std::uint64_t pathsBefore(const DagPath& path);
/// The path of a number; the world when the node has no such path.
[[nodiscard]] DagPath pathAt(const Node& node, std::uint64_t number);

/// Of the nodes of a path. Far up, ways that lead to one leaf seldom differ and are not followed.
[[nodiscard]] std::size_t hashOf(const DagPath& path);

/// Whether just one path leads to the node.
[[nodiscard]] bool hasOnePath(const Node& node);

/// How many places of instanced nodes may still be looked at. What goes through several parts of a
/// scene for one answer gives all its walks the same budget.
class PlaceBudget {
 public:
  explicit PlaceBudget(std::uint64_t most = kMostPaths) : most_(most) {}
  /// Whether there is room for one more place of `node`.
  [[nodiscard]] bool take(const Node& node);
  /// The first node of which places were left out; null: everything was looked at.
  [[nodiscard]] const Node* leftOut() const { return leftOut_; }
  /// "'leaf' and others stand in more than 100000 places: the rest is left out"; empty when nothing
  /// was.
  [[nodiscard]] std::string warning() const;

 private:
  std::uint64_t most_, taken_ = 0;
  const Node* leftOut_ = nullptr;
};

/// Goes through a path and all below it, a node before its children, without recursion and with one
/// path that grows and shrinks.
///
/// Where instances lie within instances it ends when the budget is spent. With none given it has
/// one of kMostPaths places, and warns.
class PathWalk {
 public:
  enum class Children { InOrder, Reversed };
  explicit PathWalk(DagPath top, Children order = Children::InOrder, PlaceBudget* budget = nullptr);

  [[nodiscard]] bool isDone() const { return open_.empty(); }
  [[nodiscard]] const DagPath& path() const { return path_; }
  [[nodiscard]] Node& node() const { return *path_.node(); }
  /// How far below the top: 0 for the top itself.
  [[nodiscard]] std::size_t depth() const { return open_.size() - 1; }
  void next();
  /// To what comes after all below this node.
  void skipBelow();

 private:
  [[nodiscard]] bool enter(Node* child);
  DagPath path_;
  std::vector<std::size_t> open_;  ///< for each level how many children were visited
  Children order_;
  PlaceBudget own_;
  PlaceBudget* shared_;  ///< null: `own_` counts
};

/// Told by the document of every parent that a node got or lost, and of a node's end.
void noteLink(const Node& child, const Node* parent, bool added);
void forgetParents(const Node& node);

}  // namespace host::scene
