#pragma once

#include <string>

#include "host/cmd/registry.h"

namespace host::builtins {

/// Gives the built-in commands their sentences for `help`. For the program's start.
void describeCommands(cmd::CommandRegistry& registry);

/// Gives the flags of a built-in command that have no phrase of their own yet theirs. For who is
/// about to show them: the start has no time for two thousand.
void describeFlags(cmd::Command& command);

/// The page docs/reference/commands.md: every built-in command with what it does, its modes and its
/// flags. The same words as `help`. The program prints it: `qxmt reference commands`.
/// @param scripts a folder of scripts to take examples from
/// @param code the folder of the commands' sources, to tell which flags nobody reads; either may be
///             empty
[[nodiscard]] std::string commandReference(cmd::CommandRegistry& registry,
                                           const std::string& scripts = {},
                                           const std::string& code = {});

}  // namespace host::builtins
