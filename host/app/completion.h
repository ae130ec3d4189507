#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/cmd/session.h"

namespace host::app {

/// What can stand where a word of a command line is being typed: variables behind `$`, the flags of
/// the statement's command behind `-`, attributes behind `node.`, else commands and procedures at
/// the start of a statement, nodes as well behind it, and nodes and files inside quotes.
/// @param line the text up to the cursor
/// @param word its last word, what completions stand in place of
/// @return sorted; folders end with a slash
[[nodiscard]] std::vector<std::string> completions(cmd::Session& session, std::string_view line,
                                                   std::string_view word);

}  // namespace host::app
