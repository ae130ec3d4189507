#include "host/scene/dag_paths.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/base/messages.h"

namespace host::scene {

namespace {

constexpr std::uint64_t kCountless = std::uint64_t{1} << 62;

/// Nodes with several parents, and counts that hold until the next change. On the main thread only,
/// as all of the document.
struct Counts {
  std::unordered_set<const Node*> instanced;
  std::unordered_map<const Node*, std::uint64_t> known;
};
Counts& counts() {
  // Never destroyed: a document that ends with the program still takes its nodes out.
  static Counts& all = *new Counts;
  return all;
}

std::uint64_t sum(std::uint64_t a, std::uint64_t b) {
  return std::min(a + b, kCountless);
}

/// Counts what is above first, without recursion: hierarchies are deeper than stacks.
std::uint64_t count(const Node& node) {
  auto& known = counts().known;
  std::vector<const Node*> open{&node};
  while (!open.empty()) {
    const Node* top = open.back();
    if (known.contains(top)) {
      open.pop_back();
      continue;
    }
    std::uint64_t paths = 0;
    bool isReady = true;
    for (const Node* parent : dagLinks(*top).parents) {
      const auto found = parent ? known.find(parent) : known.end();
      if (parent && found == known.end()) {
        open.push_back(parent);
        isReady = false;
      } else {
        paths = sum(paths, parent ? found->second : 1);
      }
    }
    if (!isReady) continue;
    known.emplace(top, paths);
    open.pop_back();
  }
  return known.at(&node);
}

}  // namespace

namespace {

/// What was known of the places of a node and of all below. Where nothing was known, nothing is
/// below.
void forgetPlaces(const Node& node) {
  std::vector<const Node*> open{&node};
  while (!open.empty()) {
    const DagLinks& links = dagLinks(*open.back());
    open.pop_back();
    if (!std::exchange(links.first, nullptr)) continue;
    open.insert(open.end(), links.children.begin(), links.children.end());
  }
}

}  // namespace

void noteParents(const Node& node) {
  forgetPlaces(node);
  counts().known.clear();
  if (dagLinks(node).parents.size() > 1)
    counts().instanced.insert(&node);
  else
    counts().instanced.erase(&node);
}

// Only the node itself: of those below some may be gone already.
void forgetParents(const Node& node) {
  if (node.dagExtension) dagLinks(node).first.reset();
  counts().known.clear();
  counts().instanced.erase(&node);
}

bool isAnythingInstanced() {
  return !counts().instanced.empty();
}

std::uint64_t pathCount(const Node& node) {
  if (counts().instanced.empty()) return dagLinks(node).parents.empty() ? 0 : 1;
  return count(node);
}

bool hasOnePath(const Node& node) {
  return pathCount(node) == 1;
}

PathAbove pathAbove(const Node& node, std::uint64_t number) {
  for (Node* parent : dagLinks(node).parents) {
    const std::uint64_t paths = parent ? pathCount(*parent) : 1;
    if (number < paths) return {parent, number, true};
    number -= paths;
  }
  return {};
}

std::uint64_t pathNumber(const DagPath& path) {
  if (counts().instanced.empty()) return 0;
  std::uint64_t number = 0;
  for (DagPath at = path; !at.isWorld(); at.pop()) {
    const Node* above = at.parent().node();
    for (const Node* parent : dagLinks(*at.node()).parents) {
      if (parent == above) break;
      number = sum(number, parent ? pathCount(*parent) : 1);
    }
  }
  return number;
}

PathWalk::PathWalk(DagPath top, Children order) : path_(std::move(top)), order_(order) {
  if (!path_.isWorld()) open_.push_back(0);
}

bool PathWalk::enter(Node* child) {
  if (!hasOnePath(*child) && ++shared_ > kMostPaths) {
    if (shared_ == kMostPaths + 1)
      postMessage(MessageKind::Warning,
                  fmt::format("'{}' and others stand in more than {} places: the rest is left out",
                              child->name(), kMostPaths));
    return false;
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

std::vector<DagPath> allPaths(const Node& node) {
  std::vector<DagPath> paths;
  const std::uint64_t there = isDagNode(node) ? pathCount(node) : 0;
  if (there > kMostPaths)
    postMessage(MessageKind::Warning,
                fmt::format("'{}' stands in {} places: only the first {} are looked at",
                            node.name(), there, kMostPaths));
  paths.reserve(static_cast<std::size_t>(std::min(there, kMostPaths)));
  std::uint64_t number = 0;
  // The first is known, as deep as it may be.
  if (DagPath first = there > 0 ? firstPath(node) : DagPath(); !first.isWorld()) {
    paths.push_back(std::move(first));
    number = 1;
  }
  for (; number < std::min(there, kMostPaths); ++number) {
    std::vector<Node*> nodes{const_cast<Node*>(&node)};
    PathAbove above = pathAbove(node, number);
    while (above.isThere && above.parent) {
      nodes.push_back(above.parent);
      above = pathAbove(*above.parent, above.number);
    }
    std::reverse(nodes.begin(), nodes.end());
    if (above.isThere) paths.emplace_back(std::move(nodes));
  }
  return paths;
}

}  // namespace host::scene
