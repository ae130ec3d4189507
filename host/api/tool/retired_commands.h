#pragma once

#include <memory>

#include "host/api/command/command_adapter.h"

namespace host::api {

/// Takes a command of a tool that nobody will undo, and whose own function is still running. It
/// goes when the program is idle, or before its plug-in's code does.
void retire(std::unique_ptr<CommandAdapter> command);
/// Lets go of all that are retired; none of their functions runs any more.
void dropRetired();

}  // namespace host::api
