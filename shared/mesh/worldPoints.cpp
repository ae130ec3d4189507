#include "shared/mesh/worldPoints.h"

#include <maya/MDagPath.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MString.h>

#include <cmath>

MStatus readWorldPoints(const MDagPath& mesh, MPointArray& points) {
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  if (status != MS::kSuccess) return status;
  return meshFn.getPoints(points, MSpace::kWorld);
}

MStatus writeAllWorldPoints(const MDagPath& mesh, const MPointArray& points) {
  if (!mesh.isValid()) return MS::kFailure;
  MFnMesh meshFn(mesh);
  return meshFn.setPoints(points, MSpace::kWorld);
}

bool isEveryVertex(const MIntArray& vertexIds, unsigned int vertexCount) {
  if (vertexIds.length() != vertexCount) return false;
  for (unsigned int i = 0; i < vertexCount; ++i)
    if (vertexIds[i] != static_cast<int>(i)) return false;
  return true;
}

MStatus writeWorldPoints(const MDagPath& mesh, const MIntArray& vertexIds,
                         const MPointArray& positions, MPointArray* current) {
  if (!mesh.isValid()) return MS::kFailure;
  if (isEveryVertex(vertexIds, static_cast<unsigned int>(MFnMesh(mesh).numVertices())))
    return writeAllWorldPoints(mesh, positions);
  MPointArray read;
  MPointArray& points = current ? *current : read;
  if (!current) {
    const MStatus status = readWorldPoints(mesh, points);
    if (status != MS::kSuccess) return status;
  }
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    points[static_cast<unsigned int>(vertexIds[i])] = positions[i];
  return writeAllWorldPoints(mesh, points);
}

MPointArray pointsAt(const MPointArray& points, const MIntArray& vertexIds) {
  if (isEveryVertex(vertexIds, points.length())) return points;
  MPointArray picked;
  picked.setLength(vertexIds.length());
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    picked[i] = points[static_cast<unsigned int>(vertexIds[i])];
  return picked;
}

bool idsAreInRange(const MIntArray& vertexIds, unsigned int vertexCount) {
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    if (vertexIds[i] < 0 || static_cast<unsigned int>(vertexIds[i]) >= vertexCount) return false;
  return true;
}

namespace {

bool isFinite(const MPoint& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

/// Whether all are numbers, in one pass without a branch a point: anything times zero is zero
/// unless it is no number.
bool areFinite(const MPointArray& points) {
  double nothing = 0.0;
  for (unsigned int i = 0; i < points.length(); ++i)
    nothing += (points[i].x + points[i].y + points[i].z) * 0.0;
  return nothing == 0.0;
}

void reportVertex(const char* command, int vertex) {
  MString text(command);
  text += ": vertex ";
  text += vertex;
  text += " has a position that is not a number";
  MGlobal::displayError(text);
}

}  // namespace

bool positionsAreFinite(const char* command, const MIntArray& vertexIds,
                        const MPointArray& positions) {
  if (areFinite(positions)) return true;
  for (unsigned int i = 0; i < positions.length(); ++i) {
    if (isFinite(positions[i])) continue;
    reportVertex(command, vertexIds[i]);
    return false;
  }
  return true;
}

bool positionsAreFinite(const char* command, const MPointArray& points) {
  if (areFinite(points)) return true;
  for (unsigned int i = 0; i < points.length(); ++i) {
    if (isFinite(points[i])) continue;
    reportVertex(command, static_cast<int>(i));
    return false;
  }
  return true;
}
