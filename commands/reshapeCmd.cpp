#include "commands/reshapeCmd.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

#include "shared/mesh/mirrorSides.h"
#include "shared/mesh/worldPoints.h"

MStatus reshapeCmd::refuse(const char* text) const {
  MGlobal::displayError(MString(name) + ": " + text);
  return MS::kFailure;
}

MStatus reshapeCmd::reshape(const mirrorOptions& mirror, MPointArray& positions) {
  if (vertexIds.length() == 0) return MS::kFailure;
  MPointArray points;
  MStatus status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  isSplit = mirror.isOn() && splitByMirror(vertexIds, mirrorSides(dagPath, mirror, points));
  savedPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite(name, vertexIds, savedPositions)) return MS::kFailure;
  positions = savedPositions;
  if ((status = plan(points, positions)) != MS::kSuccess) return status;
  if ((status = savedPlaces.take(dagPath, vertexIds)) != MS::kSuccess) return status;
  return writeWorldPoints(dagPath, vertexIds, positions, &points);
}

MStatus reshapeCmd::reshapeAgain() {
  MPointArray points;
  MStatus status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  MPointArray positions = pointsAt(points, vertexIds);
  if ((status = plan(points, positions)) != MS::kSuccess) return status;
  return writeWorldPoints(dagPath, vertexIds, positions, &points);
}

MStatus reshapeCmd::write(const MPointArray& positions) const {
  return writeWorldPoints(dagPath, vertexIds, positions);
}

MStatus reshapeCmd::undoIt() {
  return savedPlaces.putBack(dagPath, vertexIds, savedPositions);
}
