#pragma once

#include <memory>
#include <optional>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// What the flags of `file` ask of references; nothing when they ask for something else.
std::optional<CommandResult> editReferences(Context& context, const ParsedArgs& args);
std::optional<CommandResult> queryReferences(Context& context, const ParsedArgs& args);
/// Refers to a file as the flags say.
CommandResult referenceFile(Context& context, const ParsedArgs& args, const std::string& path);
/// Follows -loadReferenceDepth and its like while it lives.
[[nodiscard]] std::shared_ptr<void> referenceDepthScope(Context& context, const ParsedArgs& args);

}  // namespace host::builtins
