#include "host/io/ma/ma_places.h"

#include <algorithm>

#include "host/scene/dag_paths.h"

namespace host::io {

using dg::Node;
using dg::Plug;

bool WrittenPlaces::has(const Node& child, const Node* parent) const {
  return !only_ || only_->links.contains({&child, parent});
}

std::vector<Node*> WrittenPlaces::parents(const Node& node) const {
  std::vector<Node*> parents = scene::dagLinks(node).parents;
  if (only_) std::erase_if(parents, [&](const Node* parent) { return !has(node, parent); });
  return parents;
}

Node* WrittenPlaces::firstParent(const Node& node) const {
  for (Node* parent : scene::dagLinks(node).parents)
    if (has(node, parent)) return parent;
  return nullptr;
}

bool WrittenPlaces::hasFirst(const Node& node, const Node* parent) const {
  return firstParent(node) == parent && has(node, parent);
}

std::string WrittenPlaces::fullName(const Node& node) const {
  if (!only_) return scene::firstPath(node).fullName();
  std::vector<const Node*> way;
  for (const Node* at = &node; at; at = firstParent(*at)) way.push_back(at);
  std::string name;
  for (auto each = way.rbegin(); each != way.rend(); ++each) name += "|" + (*each)->name();
  return name;
}

/// Counts what is above first, without recursion: hierarchies are deeper than stacks.
std::uint64_t WrittenPlaces::countOf(const Node& node) const {
  constexpr std::uint64_t kCountless = std::uint64_t{1} << 62;
  std::vector<const Node*> open{&node};
  while (!open.empty()) {
    const Node* top = open.back();
    std::uint64_t places = 0;
    bool isReady = !counts_.contains(top);
    for (const Node* parent : isReady ? parents(*top) : std::vector<Node*>()) {
      const auto above = parent ? counts_.find(parent) : counts_.end();
      if (parent && above == counts_.end()) {
        open.push_back(parent);
        isReady = false;
      } else {
        places = std::min(places + (parent ? above->second : 1), kCountless);
      }
    }
    if (isReady) counts_[top] = places;
    if (counts_.contains(top)) std::erase(open, top);
  }
  return counts_.at(&node);
}

std::optional<Plug> WrittenPlaces::inFile(const Plug& plug) const {
  const dg::Attribute& top = plug.attribute()->top();
  const bool goesByPlaces = top.isArray && (top.worldSpace || top.longName == "instObjGroups");
  if (!only_ || !goesByPlaces || plug.index(0) < 0 || !scene::isAnythingInstanced()) return plug;
  const scene::DagPath path =
      scene::pathAt(*plug.node(), static_cast<std::uint64_t>(plug.index(0)));
  if (path.isWorld()) return std::nullopt;
  std::uint64_t number = 0;
  for (scene::DagPath at = path; !at.isWorld(); at.pop()) {
    const Node* above = at.parent().node();
    if (!has(*at.node(), above)) return std::nullopt;
    for (const Node* parent : parents(*at.node())) {
      if (parent == above) break;
      number += parent ? countOf(*parent) : 1;
    }
  }
  return plug.withIndex(0, static_cast<Index>(number));
}

}  // namespace host::io
