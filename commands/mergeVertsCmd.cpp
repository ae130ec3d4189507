#include "commands/mergeVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>

#include "shared/mesh/mirrorSides.h"
#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/flagReader.h"
#include "shared/settings/toolSettings.h"

mergeVertsCmd::mergeVertsCmd()
    : reshapeCmd("qxMergeVerts"),
      axis(0),
      mirror(false),
      mirrorWorldSpace(false),
      componentId(0),
      mirrorId(0) {}

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
  const MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  mirrorWorldSpace = toolSettings::current().mirrorWorldSpace;
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (selection.length() != 1) {
    displayError("mergeVert command does not work with multiple objects selected.");
    return MS::kFailure;
  }
  appendSelectedVertices(selection, dagPath, vertexIds);
  if (vertexIds.length() < (mirror ? 3u : 2u)) {
    displayError("mergeVert command failed: Selected Verts cannot be merged");
    return MS::kFailure;
  }
  MPointArray positions;
  return reshape(mirrorOptions(), positions);
}

MStatus mergeVertsCmd::plan(const MPointArray& points, MPointArray& positions) {
  MIntArray targets(1, componentId);
  if (mirror) targets.append(mirrorId);
  if (!idsAreInRange(targets, points.length()) || (mirror && (axis < 0 || axis > 2)))
    return MS::kInvalidParameter;
  if (!positionsAreFinite(name, targets, pointsAt(points, targets))) return MS::kFailure;

  const MPoint& target = points[static_cast<unsigned int>(componentId)];
  if (!mirror) {
    for (unsigned int i = 0; i < positions.length(); ++i) positions[i] = target;
    return MS::kSuccess;
  }
  mirrorOptions options;
  options.axis = axis;
  options.inWorldSpace = mirrorWorldSpace;
  const mirrorSides sides(dagPath, options, points);
  const bool targetIsPositive = sides.isPositive(componentId);
  const MPoint& counterpart = points[static_cast<unsigned int>(mirrorId)];
  for (unsigned int i = 0; i < positions.length(); ++i)
    positions[i] = sides.isPositive(vertexIds[i]) == targetIsPositive ? target : counterpart;
  return MS::kSuccess;
}

MStatus mergeVertsCmd::redoIt() {
  return reshapeAgain();
}
