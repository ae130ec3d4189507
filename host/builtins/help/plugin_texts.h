#pragma once

#include <string>

#include "host/builtins/common/display_strings.h"

namespace host::builtins {

/// Adds to a plug-in command's synopsis what its plug-in has said of it: a sentence below the first
/// line, and a phrase behind every flag that has a text.
[[nodiscard]] std::string describedSynopsis(const std::string& synopsis, const std::string& command,
                                            const DisplayStrings& strings);

}  // namespace host::builtins
