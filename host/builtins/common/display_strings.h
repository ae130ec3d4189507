#pragma once

#include <map>
#include <string>

namespace host::builtins {

/// Texts by key, as `displayString` keeps them: what scripts and plug-ins show people. A text whose
/// key is a command's name says what the command does, one at `COMMAND.FLAG`, by the flag's long
/// name, what the flag means; `help` shows these for plug-ins' commands.
struct DisplayStrings {
  std::map<std::string, std::string> texts;
};

}  // namespace host::builtins
