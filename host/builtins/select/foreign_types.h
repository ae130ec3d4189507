#pragma once

#include <string_view>

namespace host::builtins {

/// Whether files and scripts know a node type of that name. Scenes may ask for such nodes and find
/// none, while a name that nobody knows is a slip of the pen.
[[nodiscard]] bool isForeignNodeType(std::string_view name);

}  // namespace host::builtins
