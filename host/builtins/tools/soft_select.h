#pragma once

#include "host/builtins/common/command.h"
#include "host/edits/soft_selection.h"

namespace host::builtins {

/// What `softSelect` has set for the session; what moves, turns and scales components honours it.
[[nodiscard]] const edits::SoftSelection& softSelectionOf(cmd::Session& session);

}  // namespace host::builtins
