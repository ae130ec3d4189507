#pragma once

#include <map>
#include <set>
#include <string>

#include "host/cmd/registry.h"

namespace host::builtins {

/// Statements that use commands and their flags, out of the scripts that test them: what is shown
/// as an example has run. By command, then by long flag; the empty flag is a call without one.
using CommandExamples = std::map<std::string, std::map<std::string, std::string>>;

/// Looks through all scripts below a folder; of several statements the shortest that says something
/// is taken. Lines that are to fail are passed over. Empty without such a folder.
[[nodiscard]] CommandExamples collectExamples(const cmd::CommandRegistry& registry,
                                              const std::string& folder);

/// The words in quotes that the sources below a folder name anywhere but in the declarations of
/// flags: a flag that is not among them nobody asks for. Empty without such a folder.
[[nodiscard]] std::set<std::string> wordsReadBySources(const std::string& folder);

}  // namespace host::builtins
