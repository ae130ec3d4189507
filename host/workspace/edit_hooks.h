#pragma once

#include "host/edits/duplicate.h"
#include "host/workspace/selection_modes.h"
#include "host/workspace/workspace.h"

namespace host::workspace {

/// Who is told of copies, in the form in which edits take them.
[[nodiscard]] edits::DuplicateHooks duplicateHooks(cmd::Session& session);

/// Changes what clicks pick and tells the scripts that wait for it.
void setSelectionModes(cmd::Session& session, SelectionModes modes);
/// Component mode, with these kinds alone.
void pickComponents(cmd::Session& session, const SelectionModes::Kinds& kinds);

}  // namespace host::workspace
