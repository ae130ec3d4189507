#include "host/api/node/node_copies.h"

#include <exception>

#include "host/api/message/callbacks.h"
#include "host/api/node/px_node.h"
#include "host/base/messages.h"
#include "host/builtins/dag/duplicate_hooks.h"

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
  try {
    to->copyInternalData(from);
  } catch (const std::exception& exception) {
    postMessage(MessageKind::Error,
                fmt::format("copyInternalData of '{}' threw an exception: {}", copy.name(), exception.what()));
  } catch (...) {
    postMessage(MessageKind::Error, fmt::format("copyInternalData of '{}' threw an exception", copy.name()));
  }
}

}  // namespace

void installNodeCopies(cmd::Session& session) {
  auto& hooks = session.service<builtins::DuplicateHooks>();
  hooks.before = [] { tell(CallbackKind::BeforeDuplicate); };
  hooks.after = [] { tell(CallbackKind::AfterDuplicate); };
  hooks.copied = copyInternal;
}

}  // namespace host::api
