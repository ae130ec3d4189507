#pragma once

#include <string>
#include <vector>

#include "host/workspace/hotkeys.h"

namespace host::workspace {

/// How the commands and keys of a session differ from those that it began with, a line each, to be
/// kept between runs.
[[nodiscard]] std::vector<std::string> hotkeyChanges(const Hotkeys& hotkeys);
/// Takes what an earlier run kept. Lines that say nothing known are passed over.
void takeHotkeys(Hotkeys& hotkeys, const std::vector<std::string>& lines);

}  // namespace host::workspace
