#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace host::cmd {

/// What `help` says of a command beside its syntax.
struct HelpText {
  std::string about;                                      ///< a sentence
  std::map<std::string, std::string, std::less<>> flags;  ///< a phrase by the flag's long name
};

/// Gives a built-in command its text; the last one counts. For the program's start.
void setHelpText(const std::string& command, HelpText text);
/// Null when nobody described the command.
[[nodiscard]] const HelpText* helpTextOf(std::string_view command);

}  // namespace host::cmd
