#pragma once

#include <cstdint>

#include "brushes/penState.h"

/// What listens to the pen while a brush is in hand, one for the process.
///
/// On Windows it is a message hook on the window's thread that reads the pointer messages of pens.
/// Elsewhere there is nothing to hook: the host is asked, by a command that it may or may not have.
namespace tabletHook {

/// Begins to listen. @return false when there is nothing to listen to: no window, or a host that
/// has no answer
bool install(std::uintptr_t window, int device);
/// Listens no more; does nothing when it is not listening.
void remove();
/// The pen as it was heard of last; a mouse when it was not.
penState read();

}  // namespace tabletHook
