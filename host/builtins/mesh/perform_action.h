#pragma once

#include "host/builtins/common/command.h"

namespace host::builtins {

/// What a menu's action works on: the selected components as those of the kind that `letter` names
/// (v, e, f, uv), or the whole objects (o).
/// @return their names, or an error that names the action when nothing of the kind is selected
[[nodiscard]] Result<std::vector<std::string>> actionTargets(Context& context,
                                                             const std::string& letter,
                                                             const std::string& action);

}  // namespace host::builtins
