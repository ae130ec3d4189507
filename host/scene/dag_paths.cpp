#include "host/scene/dag_paths.h"

#include <algorithm>
#include <utility>

#include "host/base/messages.h"
#include "host/scene/path_counts.h"

namespace host::scene {

bool isUnder(const Node& child, const Node* parent) {
  const std::vector<Node*>& parents = dagLinks(child).parents;
  if (parent) {
    const std::vector<Node*>& children = dagLinks(*parent).children;
    if (children.size() < parents.size())
      return std::find(children.begin(), children.end(), &child) != children.end();
  }
  return std::find(parents.begin(), parents.end(), parent) != parents.end();
}

PathAbove pathAbove(const Node& node, std::uint64_t number) {
  const std::vector<Node*>& parents = dagLinks(node).parents;
  if (const ParentIndex* index = parentIndex(node)) {
    const std::size_t at = index->parentOf(number);
    if (at == parents.size()) return {};
    return {parents[at], number - index->pathsBefore(at), true};
  }
  for (Node* parent : parents) {
    const std::uint64_t paths = parent ? pathCount(*parent) : 1;
    if (number < paths) return {parent, number, true};
    number -= paths;
  }
  return {};
}

std::uint64_t pathsBefore(const DagPath& path) {
  const std::vector<Node*>& parents = dagLinks(*path.node()).parents;
  if (parents.size() < 2) return 0;
  const Node* above = path.parent().node();
  if (const ParentIndex* index = parentIndex(*path.node()))
    return index->pathsBefore(index->positionOf(above));
  std::uint64_t number = 0;
  for (const Node* parent : parents) {
    if (parent == above) break;
    number = sumOfPaths(number, parent ? pathCount(*parent) : 1);
  }
  return number;
}

std::uint64_t pathNumber(const DagPath& path) {
  std::uint64_t number = 0;
  if (!isAnythingInstanced()) return number;
  for (DagPath at = path; !at.isWorld(); at.pop()) number = sumOfPaths(number, pathsBefore(at));
  return number;
}

std::size_t hashOf(const DagPath& path) {
  constexpr int kFollowed = 24;
  std::uint64_t mixed = path.length();
  int left = kFollowed;
  for (const Node* node : path.upwards()) {
    if (left-- == 0) break;
    mixed = (mixed ^ reinterpret_cast<std::uintptr_t>(node)) * 0x9e3779b97f4a7c15ULL;
    mixed ^= mixed >> 29;
  }
  return mixed;
}

bool PlaceBudget::take(const Node& node) {
  if (taken_ < most_) {
    ++taken_;
    return true;
  }
  if (!leftOut_) leftOut_ = &node;
  return false;
}

std::string PlaceBudget::warning() const {
  if (!leftOut_) return {};
  return fmt::format("'{}' and others stand in more than {} places: the rest is left out",
                     leftOut_->name(), most_);
}

PathWalk::PathWalk(DagPath top, Children order, PlaceBudget* budget)
    : path_(std::move(top)), order_(order), shared_(budget) {
  if (!path_.isWorld()) open_.push_back(0);
}

bool PathWalk::enter(Node* child) {
  if (!hasOnePath(*child)) {
    const bool isFirstLeftOut = !shared_ && !own_.leftOut();
    if (!(shared_ ? *shared_ : own_).take(*child)) {
      if (isFirstLeftOut) postMessage(MessageKind::Warning, own_.warning());
      return false;
    }
  }
  path_.push(child);
  open_.push_back(0);
  return true;
}

void PathWalk::next() {
  while (!open_.empty()) {
    const std::vector<Node*>& children = dagLinks(node()).children;
    while (open_.back() < children.size()) {
      const std::size_t at = open_.back()++;
      if (enter(children[order_ == Children::InOrder ? at : children.size() - 1 - at])) return;
    }
    open_.pop_back();
    if (!open_.empty()) path_.pop();
  }
}

void PathWalk::skipBelow() {
  open_.back() = dagLinks(node()).children.size();
  next();
}

namespace {

/// The nodes of a path by its number, the top first; none when there is no such path.
std::vector<Node*> nodesOfPath(const Node& node, std::uint64_t number) {
  std::vector<Node*> nodes{const_cast<Node*>(&node)};
  PathAbove above = pathAbove(node, number);
  while (above.isThere && above.parent) {
    nodes.push_back(above.parent);
    above = pathAbove(*above.parent, above.number);
  }
  if (!above.isThere) return {};
  std::ranges::reverse(nodes);
  return nodes;
}

}  // namespace

DagPath pathAt(const Node& node, std::uint64_t number) {
  return number == 0 ? firstPath(node) : DagPath(nodesOfPath(node, number));
}

std::vector<DagPath> allPaths(const Node& node) {
  std::vector<DagPath> paths;
  const std::uint64_t there = isDagNode(node) ? pathCount(node) : 0;
  if (there > kMostPaths)
    postMessage(MessageKind::Warning,
                fmt::format("'{}' stands in {} places: only the first {} are looked at",
                            node.name(), there, kMostPaths));
  const std::uint64_t wanted = std::min(there, kMostPaths);
  paths.reserve(static_cast<std::size_t>(wanted));
  std::uint64_t number = 0;
  // The first is known, as deep as it may be.
  if (DagPath first = there > 0 ? firstPath(node) : DagPath(); !first.isWorld()) {
    paths.push_back(std::move(first));
    number = 1;
  }
  std::vector<DagPath> way;  // to the path before, level by level: what both share is made once
  for (; number < wanted; ++number) {
    const std::vector<Node*> nodes = nodesOfPath(node, number);
    if (nodes.empty()) continue;
    std::size_t same = 0;
    while (same < std::min(way.size(), nodes.size()) && way[same].node() == nodes[same]) ++same;
    way.resize(same);
    for (std::size_t i = same; i < nodes.size(); ++i)
      way.push_back((way.empty() ? DagPath() : way.back()).child(nodes[i]));
    paths.push_back(way.back());
  }
  return paths;
}

}  // namespace host::scene
