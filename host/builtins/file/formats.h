#pragma once

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::FileFormat;
using workspace::FileFormats;
using workspace::FileReadOptions;
using workspace::FileWriteOptions;

/// The formats that the session knows.
[[nodiscard]] inline FileFormats& formatsOf(Context& context) {
  return workspace::workspaceOf(context.session).fileFormats;
}

[[nodiscard]] FileFormat objFormat();
[[nodiscard]] FileFormat maFormat();

}  // namespace host::builtins
