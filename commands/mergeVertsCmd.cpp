#include "commands/mergeVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFn.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include "commands/mirrorOptions.h"
#include "commands/worldPoints.h"
#include "shared/toolSettings.h"

namespace {

/// Reads a flag when it is given; a failure is reported with `text`.
template <class Value>
MStatus readFlag(const MArgDatabase& database, const char* flag, Value& value, const char* text) {
  if (!database.isFlagSet(flag)) return MS::kSuccess;
  const MStatus status = database.getFlagArgument(flag, 0, value);
  if (status != MS::kSuccess) status.perror(text);
  return status;
}

}  // namespace

mergeVertsCmd::mergeVertsCmd() : axis(0), mirror(false), componentId(0), mirrorId(0) {}

void* mergeVertsCmd::creator() { return new mergeVertsCmd; }

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
  if (status == MS::kSuccess) status = readFlag(database, "-id", componentId, "could not parse message componentIDFlag");
  if (status == MS::kSuccess) status = readFlag(database, "-mId", mirrorId, "could not parse message mirrorIDFlag");
  if (status == MS::kSuccess) status = readFlag(database, "-ax", axis, "could not parse message axisFlag");
  return status == MS::kSuccess ? parsed : status;
}

MStatus mergeVertsCmd::doIt(const MArgList& arguments) {
  const MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (selection.length() != 1) {
    displayError("mergeVert command does not work with multiple objects selected.");
    return MS::kFailure;
  }
  for (MItSelectionList item(selection, MFn::kMeshVertComponent); !item.isDone(); item.next()) {
    MObject component;
    if (item.getDagPath(meshPath, component) != MS::kSuccess) continue;
    for (MItMeshVertex vertex(meshPath, component); !vertex.isDone(); vertex.next()) {
      vertexIds.append(vertex.index());
      oldPositions.append(vertex.position(MSpace::kWorld));
    }
  }
  if (vertexIds.length() < (mirror ? 3u : 2u)) {
    displayError("mergeVert command failed: Selected Verts cannot be merged");
    return MS::kFailure;
  }
  if (!positionsAreFinite("qxMergeVerts", vertexIds, oldPositions)) return MS::kFailure;
  return redoIt();
}

MStatus mergeVertsCmd::redoIt() {
  MPointArray points;
  const MStatus status = readWorldPoints(meshPath, points);
  if (status != MS::kSuccess) return status;
  MIntArray targets(1, componentId);
  if (mirror) targets.append(mirrorId);
  if (!idsAreInRange(vertexIds, points.length()) || !idsAreInRange(targets, points.length()) ||
      (mirror && (axis < 0 || axis > 2)))
    return MS::kInvalidParameter;

  const MPoint target = points[static_cast<unsigned int>(componentId)];
  if (!mirror) {
    for (unsigned int i = 0; i < vertexIds.length(); ++i) points[static_cast<unsigned int>(vertexIds[i])] = target;
    return writeAllWorldPoints(meshPath, points);
  }
  mirrorOptions options;
  options.axis = axis;
  options.inObjectSpace = toolSettings::current().mirrorWorldSpace ? 1 : 0;
  const mirrorPlane plane(meshPath, options);
  const MPoint counterpart = points[static_cast<unsigned int>(mirrorId)];
  const bool targetIsPositive = plane.isPositive(target);
  for (unsigned int i = 0; i < vertexIds.length(); ++i) {
    MPoint& point = points[static_cast<unsigned int>(vertexIds[i])];
    point = plane.isPositive(point) == targetIsPositive ? target : counterpart;
  }
  return writeAllWorldPoints(meshPath, points);
}

MStatus mergeVertsCmd::undoIt() { return writeWorldPoints(meshPath, vertexIds, oldPositions); }
