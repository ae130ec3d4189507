#include "commands/snapVertsToAxisCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFn.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>

#include "commands/componentGather.h"
#include "commands/worldPoints.h"
#include "shared/toolSettings.h"

snapVertsToAxisCmd::snapVertsToAxisCmd() : axis(0) {}

void* snapVertsToAxisCmd::creator() { return new snapVertsToAxisCmd; }

MSyntax snapVertsToAxisCmd::newSyntax() { return MSyntax(); }

MStatus snapVertsToAxisCmd::doIt(const MArgList& arguments) {
  MStatus status;
  const MArgDatabase database(syntax(), arguments, &status);
  if (status != MS::kSuccess) return status;
  MSelectionList selection;
  status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  for (MItSelectionList item(selection, MFn::kMeshVertComponent); !item.isDone(); item.next()) {
    MObject component;
    if (item.getDagPath(dagPath, component) != MS::kSuccess) continue;
    for (MItMeshVertex vertex(dagPath, component); !vertex.isDone(); vertex.next()) {
      vertexIds.append(vertex.index());
      savedPositions.append(vertex.position(MSpace::kWorld));
    }
  }
  if (!positionsAreFinite("qxSnapVertsToAxis", vertexIds, savedPositions)) return MS::kFailure;
  const int mirrorAxis = toolSettings::current().mirrorAxis;
  if (mirrorAxis >= 0 && mirrorAxis <= 2) axis = mirrorAxis;
  return redoIt();
}

MStatus snapVertsToAxisCmd::redoIt() {
  MPointArray points;
  const MStatus status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  for (unsigned int i = 0; i < vertexIds.length(); ++i)
    points[static_cast<unsigned int>(vertexIds[i])][static_cast<unsigned int>(axis)] = 0.0;
  return writeAllWorldPoints(dagPath, points);
}

MStatus snapVertsToAxisCmd::undoIt() { return writeWorldPoints(dagPath, vertexIds, savedPositions); }
