#include <maya/MItDependencyNodes.h>

#include <vector>

#include "host/api/core/access.h"

namespace host::api {
namespace {

/// The nodes there are when the walk starts; those that are deleted meanwhile are passed over.
struct NodeWalk final : SharedRep {
  std::vector<dg::NodePtr> nodes;
  std::vector<MFn::Type> filter;
  std::size_t position = 0;

  void start() {
    nodes = document().graph().nodes();
    position = 0;
    settle();
  }
  void settle() {
    while (position < nodes.size() && !passes(*nodes[position])) ++position;
  }
  [[nodiscard]] bool passes(dg::Node& node) const {
    if (!node.isAlive()) return false;
    if (filter.empty()) return true;
    const MObject object = wrap(&node);
    for (const MFn::Type type : filter)
      if (object.hasFn(type)) return true;
    return false;
  }
};

}  // namespace
}  // namespace host::api

using namespace host;
using api::NodeWalk;
using api::setStatus;

MItDependencyNodes::MItDependencyNodes(MFn::Type filter, MStatus* status) : handle_(new NodeWalk) {
  setStatus(status, reset(filter).statusCode());
}
MItDependencyNodes::MItDependencyNodes(const MIteratorType& filter, MStatus* status)
    : MItDependencyNodes() {
  auto* walk = static_cast<NodeWalk*>(handle_.get());
  MIntArray list;
  if (filter.filterListEnabled()) (void)filter.getFilterList(list);
  for (unsigned int i = 0; i < list.length(); ++i)
    walk->filter.push_back(static_cast<MFn::Type>(list[i]));
  if (!filter.filterListEnabled() && filter.getFilterType() != MFn::kInvalid)
    walk->filter = {filter.getFilterType()};
  walk->start();
  setStatus(status, MStatus::kSuccess);
}
MStatus MItDependencyNodes::reset(MFn::Type filter) {
  auto* walk = static_cast<NodeWalk*>(handle_.get());
  walk->filter.clear();
  if (filter != MFn::kInvalid) walk->filter = {filter};
  walk->start();
  return MStatus::kSuccess;
}
MStatus MItDependencyNodes::next() {
  auto* walk = static_cast<NodeWalk*>(handle_.get());
  if (walk->position >= walk->nodes.size()) return MStatus::kFailure;
  ++walk->position;
  walk->settle();
  return MStatus::kSuccess;
}
bool MItDependencyNodes::isDone(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  const auto* walk = static_cast<const NodeWalk*>(handle_.get());
  return walk->position >= walk->nodes.size();
}
MObject MItDependencyNodes::thisNode(MStatus* status) const {
  const auto* walk = static_cast<const NodeWalk*>(handle_.get());
  const bool isThere = walk->position < walk->nodes.size();
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere ? api::wrap(walk->nodes[walk->position]) : MObject();
}
