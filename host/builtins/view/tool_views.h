#pragma once

#include "host/cmd/session.h"
#include "host/tools/tool_registry.h"

namespace host::builtins {

/// The session's tools, with its views and selection modes given to them on first use.
[[nodiscard]] tools::ToolRegistry& toolsOf(cmd::Session& session);

}  // namespace host::builtins
