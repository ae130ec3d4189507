#pragma once

namespace host::app {

/// Shows long work on a terminal at standard error, in one line that goes away when it ends; does
/// nothing when standard error is no terminal.
void showProgressOnTerminal();

}  // namespace host::app
