#pragma once

#include <span>
#include <string>

#include "host/cmd/session.h"

namespace host::app {

/// Shows the toolkit on a real mesh: runs the tour script, which writes meshes and pictures into a
/// folder (made if missing) and says what it does.
/// @param words "quad" first for the tour of quad draw; then the folder, else one below out/
int runTour(cmd::Session& session, std::span<const std::string> words);

}  // namespace host::app
