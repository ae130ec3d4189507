#pragma once

#include <maya/MString.h>

/// The folder that the module was loaded from, as the host reports it; empty before a load. Tools
/// find their data files relative to its parent.
extern MString pluginLoadPath;
