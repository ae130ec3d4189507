#pragma once

#include "host/cmd/session.h"

namespace host::builtins {

/// Lays out the main window: its menu bar, the panes with the views, and the variables by which
/// scripts know them.
void prepareUi(cmd::Session& session);

}  // namespace host::builtins
