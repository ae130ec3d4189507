#include "host/api/node/node_copies.h"

#include <maya/MPxGeometryFilter.h>

#include "host/api/message/callbacks.h"
#include "host/api/node/px_node.h"
#include "host/api/session/api_state.h"
#include "host/workspace/deformer_hooks.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

void tell(CallbackKind kind) {
  // Without callbacks there is nobody to tell.
  if (Callbacks* all = apiState().callbacks.get()) all->fire(kind, {});
}

void copyInternal(dg::Node& original, dg::Node& copy) {
  MPxNode* from = userNodeOf(original);
  MPxNode* to = userNodeOf(copy);
  if (!from || !to) return;
  const auto call = [&] {
    to->copyInternalData(from);
    return true;
  };
  fenced(copy, "copyInternalData", call, false);
}

/// Nodes that have no opinion say that the call is unknown to them.
void leaveOut(const dg::Plug& plug, bool& isLeftOut) {
  MPxNode* object = userNodeOf(*plug.node());
  if (!object) return;
  bool isSaved = true;
  const auto ask = [&] { return object->shouldSave(wrap(plug), isSaved); };
  const MStatus status =
      fenced(*plug.node(), "shouldSave", ask, MStatus(MStatus::kUnknownParameter));
  if (status == MStatus::kSuccess && !isSaved) isLeftOut = true;
}

/// A deformer makes what it needs beside itself.
void setUpAccessories(dg::Node& node) {
  auto* filter = dynamic_cast<MPxGeometryFilter*>(userNodeOf(node));
  if (!filter) return;
  const auto call = [&] {
    MDagModifier made;
    const MStatus status = filter->accessoryNodeSetup(made);
    return status == MStatus::kSuccess ? made.doIt() : status;
  };
  fenced(node, "accessoryNodeSetup", call, MStatus());
}

}  // namespace

void installNodeCopies(cmd::Session& session) {
  workspace::Workspace& workspace = workspace::workspaceOf(session);
  workspace::DuplicateHooks& hooks = workspace.duplicateHooks;
  auto& connections = apiState().connections;
  connections.push_back(hooks.before.connect([] { tell(CallbackKind::BeforeDuplicate); }));
  connections.push_back(hooks.after.connect([] { tell(CallbackKind::AfterDuplicate); }));
  connections.push_back(hooks.copied.connect(copyInternal));
  connections.push_back(workspace.kept<workspace::DeformerHooks>().made.connect(setUpAccessories));
  connections.push_back(workspace.sceneHooks.saving.connect(leaveOut));
}

}  // namespace host::api
