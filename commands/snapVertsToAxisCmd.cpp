#include "commands/snapVertsToAxisCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/toolSettings.h"

snapVertsToAxisCmd::snapVertsToAxisCmd() : axis(0) {}

void* snapVertsToAxisCmd::creator() {
  return new snapVertsToAxisCmd;
}

MSyntax snapVertsToAxisCmd::newSyntax() {
  return MSyntax();
}

MStatus snapVertsToAxisCmd::doIt(const MArgList& arguments) {
  MStatus status;
  const MArgDatabase database(syntax(), arguments, &status);
  if (status != MS::kSuccess) return status;
  MSelectionList selection;
  status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  appendSelectedVertices(selection, dagPath, vertexIds);
  if (vertexIds.length() == 0)
    return redoIt();  // no vertices: fails on the path that was never set

  MPointArray points;
  status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  savedPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite("qxSnapVertsToAxis", vertexIds, savedPositions)) return MS::kFailure;
  if ((status = savedPlaces.take(dagPath, vertexIds)) != MS::kSuccess) return status;
  const int mirrorAxis = toolSettings::current().mirrorAxis;
  if (mirrorAxis >= 0 && mirrorAxis <= 2) axis = mirrorAxis;
  clearAxis(points);
  return writeAllWorldPoints(dagPath, points);
}

void snapVertsToAxisCmd::clearAxis(MPointArray& points) const {
  double MPoint::*const coordinate = axis == 0 ? &MPoint::x : axis == 1 ? &MPoint::y : &MPoint::z;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    points[static_cast<unsigned int>(vertexIds[i])].*coordinate = 0.0;
}

MStatus snapVertsToAxisCmd::redoIt() {
  MPointArray points;
  const MStatus status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  clearAxis(points);
  return writeAllWorldPoints(dagPath, points);
}

MStatus snapVertsToAxisCmd::undoIt() {
  return savedPlaces.putBack(dagPath, vertexIds, savedPositions);
}
