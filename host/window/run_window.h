#pragma once

namespace host::cmd {
class Session;
}

/// Opens the window on a session that is ready: plug-ins loaded, scene open. Runs until the window
/// is closed or a script quits. Loaded by the program when it is asked for, so that batch runs know
/// nothing of the window's libraries.
/// @return the exit status; 2 when there is no display
extern "C" __attribute__((visibility("default"))) int qxmtRunWindow(host::cmd::Session* session);
