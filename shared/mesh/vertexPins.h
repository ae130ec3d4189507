#pragma once

#include <maya/MIntArray.h>

#include <vector>

class MDagPath;
class MObject;

/// The pinned vertices of a mesh: those that tools leave where they are. They are kept in an
/// attribute of the mesh's shape, saved with it, for whoever moves vertices to read.
namespace vertexPins {

constexpr const char* kAttribute = "qxUvPinnedVertArray";
constexpr const char* kShortName = "qxuvPinnedVertArray";

/// The pinned vertices, ascending, each once; those that the mesh has lost are left out.
MIntArray pinsOf(const MDagPath& mesh);
/// The same as one flag a vertex, 1 for a pinned one; empty when none is.
std::vector<char> pinFlags(const MDagPath& mesh);

}  // namespace vertexPins
