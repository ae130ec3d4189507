#pragma once

#include <string>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// What the range that an imported scene plays does to the one of the open scene, by a word:
/// "keep" nothing, "override" replaces it, "combine" makes it long enough for both. Scenes say it
/// in a script node, of which only the numbers are read.
Result<void> importTimeRange(Context& context, const std::vector<dg::Node*>& imported,
                             const std::string& word);

}  // namespace host::builtins
