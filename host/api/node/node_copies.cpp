#include "host/api/node/node_copies.h"

#include "host/api/message/callbacks.h"
#include "host/api/node/px_node.h"
#include "host/builtins/dag/duplicate_hooks.h"
#include "host/builtins/file/scene_hooks.h"

namespace host::api {
namespace {

void tell(CallbackKind kind) {
  // Without callbacks there is nobody to tell.
  if (auto* all = cmd::currentSession().findService<Callbacks>()) all->fire(kind, {});
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
bool leavesOut(const dg::Plug& plug) {
  MPxNode* object = userNodeOf(*plug.node());
  if (!object) return false;
  bool isSaved = true;
  const auto ask = [&] { return object->shouldSave(wrap(plug), isSaved); };
  const MStatus status =
      fenced(*plug.node(), "shouldSave", ask, MStatus(MStatus::kUnknownParameter));
  return status == MStatus::kSuccess && !isSaved;
}

}  // namespace

void installNodeCopies(cmd::Session& session) {
  auto& hooks = session.service<builtins::DuplicateHooks>();
  hooks.before = [] { tell(CallbackKind::BeforeDuplicate); };
  hooks.after = [] { tell(CallbackKind::AfterDuplicate); };
  hooks.copied = copyInternal;
  session.service<builtins::SaveHooks>().leavesOut = leavesOut;
}

}  // namespace host::api
