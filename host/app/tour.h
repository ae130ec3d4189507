#pragma once

#include <string>

#include "host/cmd/session.h"

namespace host::app {

/// Shows the toolkit on a real mesh: runs the tour script, which writes meshes and pictures into
/// `folder` (made if missing) and says what it does.
int runTour(cmd::Session& session, const std::string& folder);

}  // namespace host::app
