#include <maya/MFnDependencyNode.h>

#include "host/api/core/access.h"
#include "host/api/node/px_node.h"

MPxNode* MFnDependencyNode::userNode(MStatus* status) const {
  host::dg::Node* node = host::api::nodeOf(object_);
  MPxNode* object = node ? host::api::userNodeOf(*node) : nullptr;
  host::api::setStatus(status, object ? MStatus::kSuccess : MStatus::kFailure);
  return object;
}
