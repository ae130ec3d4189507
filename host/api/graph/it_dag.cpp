#include <maya/MDagPathArray.h>
#include <maya/MItDag.h>

#include <deque>
#include <unordered_map>
#include <vector>

#include "host/api/core/access.h"
#include "host/base/messages.h"
#include "host/scene/dag_paths.h"

namespace host::api {
namespace {

/// Paths that are still to be visited; the front is the current one.
struct DagWalk final : SharedRep {
  scene::DagPath root;
  MItDag::TraversalType order = MItDag::kDepthFirst;
  std::vector<MFn::Type> filter;
  std::deque<scene::DagPath> open;
  bool isPruned = false;
  bool entersUnderWorld = false;
  /// Whether something at or below a node passes the filter: the walk leaves out what has nothing
  /// to show, which counts where nodes stand in millions of places.
  std::unordered_map<const dg::Node*, bool> shows;
  bool isCutShort = false;

  void start() {
    shows.clear();
    open.assign(1, root);
    isPruned = false;
    settle();
  }
  void step() {
    if (open.empty()) return;
    const scene::DagPath path = std::move(open.front());
    open.pop_front();
    if (!std::exchange(isPruned, false)) addChildren(path);
    settle();
  }

 private:
  void addChildren(const scene::DagPath& path) {
    const auto& children =
        path.isWorld() ? document().worldChildren() : scene::dagLinks(*path.node()).children;
    if (order == MItDag::kBreadthFirst) {
      for (dg::Node* child : children)
        if (mayShow(*child) && hasRoom(*child)) open.push_back(path.child(child));
    } else {
      for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (mayShow(**child)) open.push_front(path.child(*child));
    }
  }
  /// Breadth first all paths of a level wait at once.
  [[nodiscard]] bool hasRoom(const dg::Node& node) {
    constexpr std::size_t kMostWaiting = 1'000'000;
    if (open.size() < kMostWaiting || scene::hasOnePath(node)) return true;
    if (!std::exchange(isCutShort, true))
      postMessage(MessageKind::Warning,
                  fmt::format("MItDag: '{}' and others stand in more than {} places, which is too "
                              "many to go through breadth first: the rest is left out",
                              node.name(), kMostWaiting));
    return false;
  }
  /// Without recursion: hierarchies are deeper than stacks.
  [[nodiscard]] bool mayShow(dg::Node& top) {
    if (filter.empty()) return true;
    std::vector<dg::Node*> waiting{&top};
    while (!waiting.empty()) {
      dg::Node* node = waiting.back();
      const auto known = shows.find(node);
      if (known != shows.end()) {
        waiting.pop_back();
        continue;
      }
      bool isShown = fits(*node), isReady = true;
      for (dg::Node* child : scene::dagLinks(*node).children) {
        if (isShown) break;
        const auto below = shows.find(child);
        if (below == shows.end()) {
          waiting.push_back(child);
          isReady = false;
          break;
        }
        isShown = below->second;
      }
      if (isReady) shows.emplace(node, isShown);
    }
    return shows.at(&top);
  }
  [[nodiscard]] bool passes(const scene::DagPath& path) const {
    if (filter.empty()) return true;
    return !path.isWorld() && fits(*path.node());
  }
  [[nodiscard]] bool fits(dg::Node& dagNode) const {
    const MObject node = wrap(&dagNode);
    for (const MFn::Type type : filter)
      if (node.hasFn(type)) return true;
    return false;
  }
  /// Goes on to the next path that the filter lets through. What fails it is not shown, but what is
  /// below it is.
  void settle() {
    while (!open.empty() && !passes(open.front())) {
      const scene::DagPath path = std::move(open.front());
      open.pop_front();
      addChildren(path);
    }
  }
};

std::vector<MFn::Type> filterOf(const MIteratorType& info) {
  std::vector<MFn::Type> types;
  if (info.filterListEnabled()) {
    MIntArray list;
    (void)info.getFilterList(list);
    for (unsigned int i = 0; i < list.length(); ++i)
      types.push_back(static_cast<MFn::Type>(list[i]));
  } else if (info.getFilterType() != MFn::kInvalid) {
    types.push_back(info.getFilterType());
  }
  return types;
}

DagWalk* atPath(const Handle& handle, MStatus* status) {
  auto* walk = static_cast<DagWalk*>(handle.get());
  const bool isThere = walk && !walk->open.empty();
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere ? walk : nullptr;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::atPath;
using api::DagWalk;
using api::setStatus;

MItDag::MItDag(TraversalType type, MFn::Type filter, MStatus* status) {
  auto* walk = new DagWalk;
  handle_ = api::Handle(walk);
  walk->order = type;
  if (filter != MFn::kInvalid) walk->filter = {filter};
  walk->start();
  setStatus(status, MStatus::kSuccess);
}
MItDag::MItDag(const MIteratorType& infoObject, TraversalType type, MStatus* status)
    : MItDag(type, MFn::kInvalid, status) {
  auto* walk = static_cast<DagWalk*>(handle_.get());
  walk->filter = api::filterOf(infoObject);
  walk->start();
}

MStatus MItDag::reset() {
  auto* walk = static_cast<DagWalk*>(handle_.get());
  walk->root = scene::DagPath();
  walk->start();
  return MStatus::kSuccess;
}
MStatus MItDag::reset(const MObject& object, TraversalType type, MFn::Type filter) {
  MDagPath path;
  const MStatus status = MDagPath::getAPathTo(object, path);
  return status ? reset(path, type, filter) : status;
}
MStatus MItDag::reset(const MDagPath& path, TraversalType type, MFn::Type filter) {
  auto* walk = static_cast<DagWalk*>(handle_.get());
  walk->root = api::pathOf(path);
  walk->order = type;
  walk->filter.clear();
  if (filter != MFn::kInvalid) walk->filter = {filter};
  walk->start();
  return MStatus::kSuccess;
}
MStatus MItDag::next() {
  MStatus status;
  if (DagWalk* walk = atPath(handle_, &status)) walk->step();
  return status;
}
bool MItDag::isDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return atPath(handle_, nullptr) == nullptr;
}
MStatus MItDag::prune() {
  MStatus status;
  if (DagWalk* walk = atPath(handle_, &status)) walk->isPruned = true;
  return status;
}
MObject MItDag::root(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return api::wrap(static_cast<const DagWalk*>(handle_.get())->root.node());
}
MObject MItDag::currentItem(MStatus* status) const {
  const DagWalk* walk = atPath(handle_, status);
  return walk ? api::wrap(walk->open.front().node()) : MObject();
}
unsigned int MItDag::depth(MStatus* status) const {
  const DagWalk* walk = atPath(handle_, status);
  return walk ? static_cast<unsigned int>(walk->open.front().length() - walk->root.length()) : 0;
}
MItDag::TraversalType MItDag::getType(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<const DagWalk*>(handle_.get())->order;
}
MString MItDag::fullPathName(MStatus* status) const {
  const DagWalk* walk = atPath(handle_, status);
  return walk ? api::toMString(walk->open.front().fullName()) : MString();
}
MString MItDag::partialPathName(MStatus* status) const {
  const DagWalk* walk = atPath(handle_, status);
  return walk ? api::toMString(walk->open.front().partialName()) : MString();
}
MStatus MItDag::getPath(MDagPath& path) const {
  MStatus status;
  if (const DagWalk* walk = atPath(handle_, &status)) path = api::wrap(walk->open.front());
  return status;
}
MStatus MItDag::getAllPaths(MDagPathArray& paths) const {
  MStatus status;
  const MObject item = currentItem(&status);
  return status ? MDagPath::getAllPathsTo(item, paths) : status;
}
bool MItDag::isInstanced(bool indirect, MStatus* status) const {
  return instanceCount(indirect, status) > 1;
}
unsigned int MItDag::instanceCount(bool total, MStatus* status) const {
  const DagWalk* walk = atPath(handle_, status);
  const dg::Node* node = walk ? walk->open.front().node() : nullptr;
  if (!node) return 0;
  return static_cast<unsigned int>(total ? scene::pathCount(*node)
                                         : scene::dagLinks(*node).parents.size());
}
MStatus MItDag::traverseUnderWorld(bool value) {
  static_cast<DagWalk*>(handle_.get())->entersUnderWorld = value;
  return MStatus::kSuccess;
}
bool MItDag::willTraverseUnderWorld(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return static_cast<const DagWalk*>(handle_.get())->entersUnderWorld;
}
