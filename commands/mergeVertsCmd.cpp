#include "commands/mergeVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/flagReader.h"
#include "shared/settings/mirrorOptions.h"
#include "shared/settings/toolSettings.h"

mergeVertsCmd::mergeVertsCmd() : axis(0), mirror(false), componentId(0), mirrorId(0) {}

void* mergeVertsCmd::creator() {
  return new mergeVertsCmd;
}

MSyntax mergeVertsCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag("-mr", "-mirror", MSyntax::kBoolean);
  syntax.addFlag("-id", "-componentId", MSyntax::kLong);
  syntax.addFlag("-mId", "-mirrorId", MSyntax::kLong);
  syntax.addFlag("-ax", "-axis", MSyntax::kLong);
  return syntax;
}

MStatus mergeVertsCmd::parseArguments(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status = readFlag(database, "-mr", mirror, "could not parse message mirrorBool");
  if (status == MS::kSuccess)
    status = readFlag(database, "-id", componentId, "could not parse message componentIDFlag");
  if (status == MS::kSuccess)
    status = readFlag(database, "-mId", mirrorId, "could not parse message mirrorIDFlag");
  if (status == MS::kSuccess)
    status = readFlag(database, "-ax", axis, "could not parse message axisFlag");
  return status == MS::kSuccess ? parsed : status;
}

MStatus mergeVertsCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (selection.length() != 1) {
    displayError("mergeVert command does not work with multiple objects selected.");
    return MS::kFailure;
  }
  appendSelectedVertices(selection, meshPath, vertexIds);
  if (vertexIds.length() < (mirror ? 3u : 2u)) {
    displayError("mergeVert command failed: Selected Verts cannot be merged");
    return MS::kFailure;
  }
  MPointArray points;
  if ((status = readWorldPoints(meshPath, points)) != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  oldPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite("qxMergeVerts", vertexIds, oldPositions)) return MS::kFailure;
  if ((status = oldPlaces.take(meshPath, vertexIds)) != MS::kSuccess) return status;
  return gatherAtTarget(points);
}

MStatus mergeVertsCmd::redoIt() {
  MPointArray points;
  const MStatus status = readWorldPoints(meshPath, points);
  return status == MS::kSuccess ? gatherAtTarget(points) : status;
}

MStatus mergeVertsCmd::gatherAtTarget(MPointArray& points) {
  MIntArray targets(1, componentId);
  if (mirror) targets.append(mirrorId);
  if (!idsAreInRange(vertexIds, points.length()) || !idsAreInRange(targets, points.length()) ||
      (mirror && (axis < 0 || axis > 2)))
    return MS::kInvalidParameter;
  if (!positionsAreFinite("qxMergeVerts", targets, pointsAt(points, targets))) return MS::kFailure;

  const MPoint target = points[static_cast<unsigned int>(componentId)];
  if (!mirror) {
    for (unsigned int i = 0; i < vertexIds.length(); ++i)
      points[static_cast<unsigned int>(vertexIds[i])] = target;
    return writeAllWorldPoints(meshPath, points);
  }
  mirrorOptions options;
  options.axis = axis;
  options.inWorldSpace = toolSettings::current().mirrorWorldSpace;
  const mirrorPlane plane = options.plane(meshPath);
  const MPoint counterpart = points[static_cast<unsigned int>(mirrorId)];
  const bool targetIsPositive = plane.isPositive(target);
  for (unsigned int i = 0; i < vertexIds.length(); ++i) {
    MPoint& point = points[static_cast<unsigned int>(vertexIds[i])];
    point = plane.isPositive(point) == targetIsPositive ? target : counterpart;
  }
  return writeAllWorldPoints(meshPath, points);
}

MStatus mergeVertsCmd::undoIt() {
  return oldPlaces.putBack(meshPath, vertexIds, oldPositions);
}
