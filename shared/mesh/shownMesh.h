#pragma once

#include <maya/MDagPath.h>
#include <maya/MStatus.h>

/// Extends a path to the mesh that it shows: a mesh stays, a transform goes to the first mesh below
/// it that is no intermediate object. The host's own way down may refuse a transform with several
/// shapes, or stop at one that only feeds the history.
/// @return failure, with the path as it was, when it shows none
MStatus extendToShownMesh(MDagPath& path);
