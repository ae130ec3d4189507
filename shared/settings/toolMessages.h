#pragma once

#include <maya/MStatus.h>

class MString;

/// What a message of the toolkit's windows sets off in a compiled tool.
using toolMessageHandler = MStatus (*)();

/// Gives a message to the tool that answers it; null takes it away. Called at load and unload by
/// who owns the tool.
void setToolMessageHandler(const char* message, toolMessageHandler handler);

/// Hands a message to its tool. Without one an error says that the tool is not available, and the
/// call fails.
MStatus runToolMessage(const MString& message);
