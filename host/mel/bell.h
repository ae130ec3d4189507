#pragma once

namespace host::mel {

/// Makes the script that runs ask isCancelled() at its next loop turn or call, if one runs. From
/// any thread. So a window that listens there sees what its person does while a script never comes
/// back by itself.
void ringBell() noexcept;

}  // namespace host::mel
