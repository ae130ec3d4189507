#pragma once

#include <memory>

#include "host/cmd/registry.h"
#include "host/cmd/session.h"

namespace host::builtins {

/// Adds every built-in command.
void registerBuiltinCommands(cmd::CommandRegistry& registry);

/// A session with the built-in node types and commands and a new scene in it.
[[nodiscard]] std::unique_ptr<cmd::Session> makeSession();

}  // namespace host::builtins
