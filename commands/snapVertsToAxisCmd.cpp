#include "commands/snapVertsToAxisCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MSelectionList.h>

#include "shared/selection/componentGather.h"
#include "shared/settings/toolSettings.h"

snapVertsToAxisCmd::snapVertsToAxisCmd() : reshapeCmd("qxSnapVertsToAxis"), axis(0) {}

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
  const int mirrorAxis = toolSettings::current().mirrorAxis;
  if (mirrorAxis >= 0 && mirrorAxis <= 2) axis = mirrorAxis;
  MPointArray positions;
  return reshape(mirrorOptions(), positions);
}

MStatus snapVertsToAxisCmd::plan(const MPointArray&, MPointArray& positions) {
  double MPoint::*const coordinate = axis == 0 ? &MPoint::x : axis == 1 ? &MPoint::y : &MPoint::z;
  for (unsigned int i = 0; i < positions.length(); ++i) positions[i].*coordinate = 0.0;
  return MS::kSuccess;
}

MStatus snapVertsToAxisCmd::redoIt() {
  return reshapeAgain();
}
