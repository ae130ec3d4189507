#include "host/scene/path_counts.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "host/scene/dag_paths.h"

namespace host::scene {

namespace {

constexpr std::uint64_t kCountless = std::uint64_t{1} << 62;

struct Asked {
  int times = 0;
  std::optional<ParentIndex> index;
};

/// Nodes with several parents, and what is known of paths. Where a node's count is known, the
/// counts of all above are.
struct Counts {
  std::unordered_set<const Node*> instanced;
  std::unordered_map<const Node*, std::uint64_t> known;
  std::unordered_map<const Node*, Asked> asked;  ///< since the last change
};
Counts& counts() {
  // Never destroyed: a document that ends with the program still takes its nodes out.
  static Counts& all = *new Counts;
  return all;
}

/// A map that was cleared keeps its table, and clearing it again costs as much as that is long.
void drop(auto& map) {
  if (!map.empty()) map = {};
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
        paths = sumOfPaths(paths, parent ? found->second : 1);
      }
    }
    if (!isReady) continue;
    known.emplace(top, paths);
    open.pop_back();
  }
  return known.at(&node);
}

/// What was known of the places of a node and of all whose first place lies below. Where nothing
/// was known, nothing is below.
void forgetPlaces(const Node& node) {
  std::vector<const Node*> open{&node};
  while (!open.empty()) {
    const Node* above = open.back();
    open.pop_back();
    if (!std::exchange(dagLinks(*above).first, nullptr)) continue;
    for (const Node* child : dagLinks(*above).children)
      if (dagLinks(*child).parents.front() == above) open.push_back(child);
  }
}

/// Whether the first place that is known of a node still is the first.
bool isFirstKept(const Node& node) {
  const DagLinks& links = dagLinks(node);
  if (!links.first || links.parents.empty()) return false;
  const Node* above = links.first->above ? links.first->above->node.get() : nullptr;
  return links.parents.front() == above;
}

/// A node and all below whose counts are known, each after all its parents among them. Empty when
/// they are more than is worth going through.
std::vector<const Node*> knownBelow(const Node& top, std::size_t most) {
  const auto& known = counts().known;
  std::vector<const Node*> order;
  std::unordered_set<const Node*> seen{&top};
  std::vector<std::pair<const Node*, std::size_t>> open{{&top, 0}};
  while (!open.empty()) {
    auto& [node, next] = open.back();
    const std::vector<Node*>& children = dagLinks(*node).children;
    if (next == children.size()) {
      order.push_back(node);
      open.pop_back();
      continue;
    }
    const Node* child = children[next++];
    if (!known.contains(child) || !seen.insert(child).second) continue;
    if (seen.size() > most) return {};
    open.emplace_back(child, 0);
  }
  std::ranges::reverse(order);
  return order;
}

/// Brings the counts at and below a node up to date when one of its parents came or went.
void changePaths(const Node& child, const Node* parent, bool added) {
  auto& known = counts().known;
  if (!known.contains(&child)) return;
  const std::uint64_t change = parent ? pathCount(*parent) : 1;
  constexpr std::size_t kFew = 64;
  const std::vector<const Node*> order = knownBelow(child, kFew + known.size() / 16);
  if (order.empty()) return drop(known);
  std::unordered_map<const Node*, std::uint64_t> ways{{&child, 1}};
  for (const Node* node : order) {
    const std::uint64_t lead = ways[node];
    std::uint64_t& paths = known[node];
    // What stopped growing can't be counted down again.
    constexpr std::uint64_t kExact = std::uint64_t{1} << 31;
    if (lead >= kExact || change >= kExact || paths >= kCountless / 2) return drop(known);
    paths = added ? sumOfPaths(paths, change * lead) : paths - change * lead;
    for (const Node* below : dagLinks(*node).children)
      if (known.contains(below)) ways[below] = sumOfPaths(ways[below], lead);
  }
}

}  // namespace

std::uint64_t sumOfPaths(std::uint64_t a, std::uint64_t b) {
  return std::min(a + b, kCountless);
}

void noteLink(const Node& child, const Node* parent, bool added) {
  if (!isFirstKept(child)) forgetPlaces(child);
  Counts& all = counts();
  drop(all.asked);
  if (dagLinks(child).parents.size() > 1)
    all.instanced.insert(&child);
  else
    all.instanced.erase(&child);
  if (all.instanced.empty())
    drop(all.known);
  else
    changePaths(child, parent, added);
}

// Only the node itself: of those below some may be gone already.
void forgetParents(const Node& node) {
  if (node.dagExtension) dagLinks(node).first.reset();
  Counts& all = counts();
  drop(all.asked);
  all.known.erase(&node);
  all.instanced.erase(&node);
  if (all.instanced.empty()) drop(all.known);
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

ParentIndex::ParentIndex(const Node& node) {
  const std::vector<Node*>& parents = dagLinks(node).parents;
  places_.reserve(parents.size());
  before_.reserve(parents.size() + 1);
  std::uint64_t paths = 0;
  for (std::size_t i = 0; i < parents.size(); ++i) {
    places_.emplace_back(parents[i], i);
    before_.push_back(paths);
    paths = sumOfPaths(paths, parents[i] ? pathCount(*parents[i]) : 1);
  }
  before_.push_back(paths);
  std::ranges::sort(places_);
}

std::size_t ParentIndex::positionOf(const Node* parent) const {
  const auto found =
      std::ranges::lower_bound(places_, parent, {}, [](const auto& place) { return place.first; });
  return found != places_.end() && found->first == parent ? found->second : places_.size();
}

std::size_t ParentIndex::parentOf(std::uint64_t number) const {
  // The last parent that begins at or before the number; one over which no path comes is skipped.
  const auto after = std::ranges::upper_bound(before_, number);
  const auto position = static_cast<std::size_t>(after - before_.begin());
  return position == 0 ? places_.size() : std::min(position - 1, places_.size());
}

const ParentIndex* parentIndex(const Node& node) {
  constexpr std::size_t kFewParents = 16;
  constexpr int kFewTimes = 8;
  if (dagLinks(node).parents.size() <= kFewParents) return nullptr;
  Asked& asked = counts().asked[&node];
  if (!asked.index && ++asked.times > kFewTimes) asked.index.emplace(node);
  return asked.index ? &*asked.index : nullptr;
}

}  // namespace host::scene
