#pragma once

#include <maya/MStatus.h>

/// Tells the host what the module's commands and their flags mean, as texts by key
/// (`displayString`): "COMMAND" for what it does, "COMMAND.FLAG" by the flag's long name. Who shows
/// help finds them there; others never notice.
MStatus registerHelpTexts();

/// Takes them away again.
MStatus removeHelpTexts();
