#pragma once

#include "host/builtins/common/command.h"

namespace host::builtins {

/// Runs what script nodes of an opened scene hold for its opening, when the user `allowed` it;
/// otherwise says that they did not run. Nothing of a scene runs by itself.
void runScriptNodes(Context& context, bool allowed);

/// Expressions run only when their scene is trusted; else what they drive keeps its values.
void admitExpressions(Context& context, bool allowed);

}  // namespace host::builtins
