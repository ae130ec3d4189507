#pragma once

#include <string_view>

#include "host/base/messages.h"

namespace host {

/// Writes to the standard streams, as messages do while no sink is set; for sinks that add to that.
void writeMessageToStreams(MessageKind kind, std::string_view text);

}  // namespace host
