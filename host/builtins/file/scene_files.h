#pragma once

#include "host/builtins/common/command.h"

namespace host::builtins {

/// The works of the `file` command. Each tells the session's SceneHooks what it comes to.

CommandResult newScene(Context& context, const ParsedArgs& args);
/// A file that cannot be read leaves the scene as it was.
CommandResult openScene(Context& context, const ParsedArgs& args);
/// One step of undo. A file that cannot be read leaves the scene as it was.
CommandResult importFile(Context& context, const ParsedArgs& args);
CommandResult saveScene(Context& context, const ParsedArgs& args);
CommandResult exportScene(Context& context, const ParsedArgs& args, bool onlySelected);
CommandResult renameScene(Context& context, const ParsedArgs& args);
CommandResult queryFile(Context& context, const ParsedArgs& args);

/// Absolute, with slashes, without "." and "..".
[[nodiscard]] std::string absolutePath(const std::string& name);

}  // namespace host::builtins
