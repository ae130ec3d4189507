#pragma once

namespace host::cmd {
class Session;
}

namespace host::app {

/// The program: parses the command line, runs what it asks for and gives back the exit status.
int runProgram(int argc, char** argv);

/// Shows a session until the person leaves. @return the exit status
using WindowEntry = int (*)(cmd::Session&);
/// What `-w` runs; without it the program becomes the one beside it that has a window.
void setWindow(WindowEntry entry);

}  // namespace host::app
