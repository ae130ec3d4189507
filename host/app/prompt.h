#pragma once

#include "host/cmd/session.h"

namespace host::app {

/// Reads command lines from the terminal and runs them until end of input or `quit`: line editing,
/// history kept between runs, completion of procedures, commands, variables and file names. An
/// unfinished statement goes on on the next line. Ctrl-C ends what runs, or clears the line.
int runPrompt(cmd::Session& session);

/// Runs standard input as one script.
int runStandardInput(cmd::Session& session);

}  // namespace host::app
