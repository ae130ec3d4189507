#pragma once

#include <maya/MDagPath.h>

/// The mesh whose UVs a UV object holds, whichever way the two are linked; an invalid path for a
/// mesh that is no UV object.
MDagPath meshOfUvObject(const MDagPath& uvObject);
/// The UV object that a mesh's UVs come from; an invalid path when there is none.
MDagPath uvObjectOfMesh(const MDagPath& mesh);
