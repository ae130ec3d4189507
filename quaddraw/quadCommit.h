#pragma once

#include <maya/MPointArray.h>
#include <maya/MString.h>

#include "quaddraw/drawnMesh.h"

/// The commands that make a polygon of four points, run with undo; the polygon faces where its
/// points go counter-clockwise. With mirroring on they make its image across the plane of the tool
/// settings too, and both share what stands on the plane.
namespace quadCommit {

/// Whether the mesh has a size to draw on; says so when not.
bool canAppend(const drawnMesh& mesh);

/// Appends to the mesh: corners that equal a border vertex exactly are that vertex.
/// @return whether the mesh got the polygon; a refusal was shown and left it as it was
bool append(const drawnMesh& mesh, const MPointArray& points);

/// Makes a new object and selects it.
bool create(const MPointArray& points);

/// The text that `append` runs.
MString appendCommand(const drawnMesh& mesh, const MPointArray& points);

}  // namespace quadCommit
