#pragma once

namespace host::app {

/// The program: parses the command line, runs what it asks for and gives back the exit status.
int runProgram(int argc, char** argv);

}  // namespace host::app
