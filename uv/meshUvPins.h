#pragma once

#include <vector>

class MDagPath;

/// The host's own pins of a mesh's UVs, of the current set: one flag a UV, 1 for a pinned one.
/// Empty when none is pinned, and in a host that knows no pinned UVs.
std::vector<char> meshUvPins(const MDagPath& mesh, unsigned int count);
