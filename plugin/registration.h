#pragma once

#include <maya/MFnPlugin.h>
#include <maya/MStatus.h>

/// Registers every row of the load table, in its order. A command, node or draw override that fails
/// ends it with the failed status after `perror`; a context command that fails is reported and the
/// rest goes on. Rows whose class is not part of this build are passed over.
MStatus registerAll(MFnPlugin& plugin);

/// Takes everything out again, in the unload table's order; the first failure ends it with its
/// status after `perror`.
MStatus deregisterAll(MFnPlugin& plugin);
