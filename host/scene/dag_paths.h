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

/// The parent that path number `number` comes from, and the number of that one's path; a null
/// parent is the world. `isThere` is false when the node has no such path.
struct PathAbove {
  Node* parent = nullptr;
  std::uint64_t number = 0;
  bool isThere = false;
};
[[nodiscard]] PathAbove pathAbove(const Node& node, std::uint64_t number);

/// The place of a path in `allPaths` of its leaf. Linear in its length.
[[nodiscard]] std::uint64_t pathNumber(const DagPath& path);

/// Whether just one path leads to the node.
[[nodiscard]] bool hasOnePath(const Node& node);

/// Goes through a path and all below it, a node before its children, without recursion and with one
/// path that grows and shrinks.
///
/// Where instances lie within instances it ends after kMostPaths places of instanced nodes, with a
/// warning.
class PathWalk {
 public:
  enum class Children { InOrder, Reversed };
  explicit PathWalk(DagPath top, Children order = Children::InOrder);

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
  std::uint64_t shared_ = 0;
};

/// Told by the document of every change of a node's parents, and of its end.
void noteParents(const Node& node);
void forgetParents(const Node& node);

}  // namespace host::scene
