#pragma once

#include <maya/MStatus.h>

class MDagPath;
class MIntArray;
class MPointArray;

/// Reads all points of a mesh in world space.
MStatus readWorldPoints(const MDagPath& mesh, MPointArray& points);

/// Writes all points of a mesh in world space.
MStatus writeAllWorldPoints(const MDagPath& mesh, const MPointArray& points);

/// Puts `positions[i]` at vertex `vertexIds[i]`, in world space; all other points stay where they
/// are.
/// @param current all points of the mesh as they are now, when the caller has just read them: they
/// are changed and
///        written, which saves a large mesh a second read; null: they are read here
/// @return failure, with nothing changed, when the path is no longer valid or the mesh has lost one
/// of the vertices.
MStatus writeWorldPoints(const MDagPath& mesh, const MIntArray& vertexIds,
                         const MPointArray& positions, MPointArray* current = nullptr);

/// The points at `vertexIds`, in that order. Every id must be in range.
MPointArray pointsAt(const MPointArray& points, const MIntArray& vertexIds);

/// Whether the ids are all vertices of a mesh, in order.
bool isEveryVertex(const MIntArray& vertexIds, unsigned int vertexCount);

/// Whether all ids are vertices of a mesh with `vertexCount` points.
bool idsAreInRange(const MIntArray& vertexIds, unsigned int vertexCount);

/// Checks that every listed position is a number, else shows an error that names the command and
/// the first bad vertex.
bool positionsAreFinite(const char* command, const MIntArray& vertexIds,
                        const MPointArray& positions);
/// The same for all points of a mesh.
bool positionsAreFinite(const char* command, const MPointArray& points);
