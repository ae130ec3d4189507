#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/cmd/session.h"

namespace host::builtins {

/// What a click in a view may pick: whole objects or components, and which kinds of each.
struct SelectionModes {
  bool isComponentMode = false;
  std::set<std::string, std::less<>> componentTypes{"vertex"};  ///< long flag names that are on
  std::set<std::string, std::less<>> objectComponentTypes{"vertex"};
  std::set<std::string, std::less<>> objectTypesOff;
};

/// The command lines that bring the selection modes back.
[[nodiscard]] std::vector<std::string> selectionSettings(cmd::Session& session);

}  // namespace host::builtins
