#include "host/workspace/edit_hooks.h"

#include <utility>

namespace host::workspace {

edits::DuplicateHooks duplicateHooks(cmd::Session& session) {
  DuplicateHooks& hooks = workspaceOf(session).duplicateHooks;
  return {.before = [&hooks] { hooks.before(); },
          .after = [&hooks] { hooks.after(); },
          .copied = [&hooks](dg::Node& original, dg::Node& copy) { hooks.copied(original, copy); }};
}

void setSelectionModes(cmd::Session& session, SelectionModes modes) {
  workspaceOf(session).selectionModes = std::move(modes);
  session.scriptJobs().triggerEvent("SelectModeChanged");
  session.scriptJobs().triggerEvent("SelectTypeChanged");
}

void pickComponents(cmd::Session& session, const SelectionModes::Kinds& kinds) {
  SelectionModes modes = workspaceOf(session).selectionModes;
  modes.isComponentMode = true;
  modes.componentTypes = modes.objectComponentTypes = kinds;
  setSelectionModes(session, std::move(modes));
}

}  // namespace host::workspace
