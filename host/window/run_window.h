#pragma once

#include "host/cmd/session.h"

namespace host::window {

/// Opens the window on a session that is ready: plug-ins loaded, scene open. Runs until the window
/// is closed or a script quits.
/// @return the exit status; 2 when there is no display
int runWindow(cmd::Session& session);

}  // namespace host::window
