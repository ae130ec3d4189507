#pragma once

#include "host/base/messages.h"

namespace host {

/// Whether messages of a kind reach anybody: all do at first. What a script prints always does.
void showMessages(MessageKind kind, bool areShown);
[[nodiscard]] bool areMessagesShown(MessageKind kind);

}  // namespace host
