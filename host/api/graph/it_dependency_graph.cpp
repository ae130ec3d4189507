#include <maya/MIntArray.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MObjectArray.h>
#include <maya/MPlugArray.h>

#include <algorithm>
#include <deque>
#include <unordered_set>
#include <vector>

#include "host/api/core/access.h"

namespace host::api {
namespace {

using Graph = MItDependencyGraph;

/// A place the walk comes to: a node, by the plug through which it was reached, and the way there.
struct Stop {
  dg::NodePtr node;
  dg::Plug plug;  ///< null for a root node
  std::vector<dg::NodePtr> way;
};

struct GraphWalk final : SharedRep {
  dg::NodePtr root;
  dg::Plug rootPlug;
  std::vector<MFn::Type> filter;
  Graph::Direction direction = Graph::kDownstream;
  Graph::Traversal traversal = Graph::kDepthFirst;
  Graph::Level level = Graph::kNodeLevel;
  bool prunesOnFilter = false, isPruned = false;
  std::deque<Stop> open;
  std::unordered_set<const dg::Node*> seenNodes;
  std::unordered_set<dg::Plug, dg::PlugHash> seenPlugs;

  void start() {
    open.clear();
    seenNodes.clear();
    seenPlugs.clear();
    isPruned = false;
    if (!root || !root->isAlive()) return;
    seenNodes.insert(root.get());
    open.push_back({root, rootPlug, {root}});
    settle();
  }
  void step() {
    if (open.empty()) return;
    leave(!std::exchange(isPruned, false));
    settle();
  }

 private:
  [[nodiscard]] bool passes(const dg::NodePtr& node) const {
    if (filter.empty()) return true;
    const MObject object = wrap(node);
    return std::any_of(filter.begin(), filter.end(),
                       [&](MFn::Type type) { return object.hasFn(type); });
  }
  void settle() {
    while (!open.empty() && !passes(open.front().node)) leave(!prunesOnFilter);
  }
  void leave(bool goesOn) {
    const Stop stop = std::move(open.front());
    open.pop_front();
    if (goesOn && stop.node->isAlive()) addNext(stop);
  }
  [[nodiscard]] bool isNew(const dg::Plug& plug) {
    return level == Graph::kNodeLevel ? seenNodes.insert(plug.node()).second
                                      : seenPlugs.insert(plug).second;
  }
  void addNext(const Stop& stop) {
    std::vector<Stop> next;
    const auto add = [&](const dg::Plug& plug) {
      if (!isNew(plug)) return;
      Stop to{plug.node()->shared_from_this(), plug, stop.way};
      to.way.push_back(to.node);
      next.push_back(std::move(to));
    };
    const dg::Graph& graph = stop.node->graph();
    const bool isUp = direction == Graph::kUpstream;
    // A walk that starts at a plug leaves its node by that plug's connections only.
    const bool isRootPlug = rootPlug && stop.plug == rootPlug;
    for (const auto& each : isUp ? graph.incoming(*stop.node) : graph.outgoing(*stop.node)) {
      if (isRootPlug && !touches(isUp ? each.destination : each.source)) continue;
      add(isUp ? each.source : each.destination);
    }
    if (traversal == Graph::kBreadthFirst)
      for (Stop& each : next) open.push_back(std::move(each));
    else
      for (auto each = next.rbegin(); each != next.rend(); ++each)
        open.push_front(std::move(*each));
  }
  /// Whether a plug of the root's node is the root plug, or a part of it, or has it as a part.
  [[nodiscard]] bool touches(const dg::Plug& plug) const {
    const auto isAtOrBelow = [](dg::Plug part, const dg::Plug& above) {
      for (; part; part = part.isElement() ? part.array() : part.parent())
        if (part == above) return true;
      return false;
    };
    return isAtOrBelow(plug, rootPlug) || isAtOrBelow(rootPlug, plug);
  }
};

GraphWalk& walkOf(const Handle& handle) {
  return *static_cast<GraphWalk*>(handle.get());
}

const Stop* atStop(const Handle& handle, MStatus* status) {
  const GraphWalk& walk = walkOf(handle);
  setStatus(status, walk.open.empty() ? MStatus::kFailure : MStatus::kSuccess);
  return walk.open.empty() ? nullptr : &walk.open.front();
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::atStop;
using api::setStatus;
using api::walkOf;

MItDependencyGraph::MItDependencyGraph(MObject& rootNode, MFn::Type filter, Direction direction,
                                       Traversal traversal, Level level, MStatus* status)
    : handle_(new api::GraphWalk) {
  setStatus(status, resetTo(rootNode, filter, direction, traversal, level).statusCode());
}
MItDependencyGraph::MItDependencyGraph(MPlug& rootPlug, MFn::Type filter, Direction direction,
                                       Traversal traversal, Level level, MStatus* status)
    : handle_(new api::GraphWalk) {
  setStatus(status, resetTo(rootPlug, filter, direction, traversal, level).statusCode());
}
MItDependencyGraph::MItDependencyGraph(MObject& rootNode, const MIteratorType& filter,
                                       Direction direction, Traversal traversal, Level level,
                                       MStatus* status)
    : handle_(new api::GraphWalk) {
  const MStatus done = resetTo(rootNode, filter.getFilterType(), direction, traversal, level);
  setStatus(status, done.statusCode());
  if (!done || !filter.filterListEnabled()) return;
  MIntArray list;
  (void)filter.getFilterList(list);
  walkOf(handle_).filter.clear();
  for (unsigned int i = 0; i < list.length(); ++i)
    walkOf(handle_).filter.push_back(static_cast<MFn::Type>(list[i]));
  walkOf(handle_).start();
}

MStatus MItDependencyGraph::reset() {
  walkOf(handle_).start();
  return MStatus::kSuccess;
}
MStatus MItDependencyGraph::resetTo(MObject& rootNode, MFn::Type filter, Direction direction,
                                    Traversal traversal, Level level) {
  api::GraphWalk& walk = walkOf(handle_);
  dg::Node* node = api::nodeOf(rootNode);
  walk.root = node ? node->shared_from_this() : nullptr;
  walk.rootPlug = dg::Plug();
  walk.filter.clear();
  if (filter != MFn::kInvalid) walk.filter = {filter};
  walk.direction = direction;
  walk.traversal = traversal;
  walk.level = level;
  walk.start();
  return node ? MStatus::kSuccess : MStatus::kInvalidParameter;
}
MStatus MItDependencyGraph::resetTo(MPlug& rootPlug, MFn::Type filter, Direction direction,
                                    Traversal traversal, Level level) {
  MObject node = rootPlug.node();
  const MStatus status = resetTo(node, filter, direction, traversal, level);
  if (!status) return status;
  walkOf(handle_).rootPlug = api::plugOf(rootPlug);
  walkOf(handle_).start();
  return MStatus::kSuccess;
}
MStatus MItDependencyGraph::next() {
  MStatus status;
  if (atStop(handle_, &status)) walkOf(handle_).step();
  return status;
}
bool MItDependencyGraph::isDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_).open.empty();
}
MStatus MItDependencyGraph::prune() {
  MStatus status;
  if (atStop(handle_, &status)) walkOf(handle_).isPruned = true;
  return status;
}
MObject MItDependencyGraph::currentItem(MStatus* status) const {
  const api::Stop* stop = atStop(handle_, status);
  return stop ? api::wrap(stop->node) : MObject();
}
MPlug MItDependencyGraph::thisPlug(MStatus* status) const {
  const api::Stop* stop = atStop(handle_, status);
  if (stop && stop->plug.isNull()) setStatus(status, MStatus::kFailure);
  return stop ? api::wrap(stop->plug) : MPlug();
}
MStatus MItDependencyGraph::getNodePath(MObjectArray& path) const {
  path.clear();
  MStatus status;
  const api::Stop* stop = atStop(handle_, &status);
  if (!stop) return status;
  for (auto node = stop->way.rbegin(); node != stop->way.rend(); ++node)
    path.append(api::wrap(*node));
  return status;
}
bool MItDependencyGraph::thisNodeHasUnknownType(MStatus* status) const {
  (void)atStop(handle_, status);
  return false;
}
bool MItDependencyGraph::atNodeLevel(MStatus* status) const {
  return currentLevel(status) == kNodeLevel;
}
MStatus MItDependencyGraph::rootNode(MObject& root) const {
  root = api::wrap(walkOf(handle_).root);
  return root.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}
MStatus MItDependencyGraph::rootPlug(MPlug& root) const {
  root = api::wrap(walkOf(handle_).rootPlug);
  return root.isNull() ? MStatus::kFailure : MStatus::kSuccess;
}
MItDependencyGraph::Direction MItDependencyGraph::currentDirection(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_).direction;
}
MItDependencyGraph::Traversal MItDependencyGraph::currentTraversal(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_).traversal;
}
MItDependencyGraph::Level MItDependencyGraph::currentLevel(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_).level;
}
MStatus MItDependencyGraph::toggleDirection() {
  Direction& direction = walkOf(handle_).direction;
  direction = direction == kUpstream ? kDownstream : kUpstream;
  return reset();
}
MStatus MItDependencyGraph::toggleTraversal() {
  Traversal& traversal = walkOf(handle_).traversal;
  traversal = traversal == kDepthFirst ? kBreadthFirst : kDepthFirst;
  return reset();
}
MStatus MItDependencyGraph::toggleLevel() {
  Level& level = walkOf(handle_).level;
  level = level == kNodeLevel ? kPlugLevel : kNodeLevel;
  return reset();
}
MFn::Type MItDependencyGraph::currentFilter(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  const auto& filter = walkOf(handle_).filter;
  return filter.empty() ? MFn::kInvalid : filter.front();
}
MStatus MItDependencyGraph::setCurrentFilter(MFn::Type filter) {
  walkOf(handle_).filter.clear();
  if (filter != MFn::kInvalid) walkOf(handle_).filter = {filter};
  return reset();
}
bool MItDependencyGraph::isPruningOnFilter(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return walkOf(handle_).prunesOnFilter;
}
void MItDependencyGraph::enablePruningOnFilter() {
  walkOf(handle_).prunesOnFilter = true;
}
void MItDependencyGraph::disablePruningOnFilter() {
  walkOf(handle_).prunesOnFilter = false;
}
