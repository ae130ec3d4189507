#include "quaddraw/addPolyCmd.h"

#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

addPolyCmd::~addPolyCmd() = default;

void* addPolyCmd::creator() {
  return new addPolyCmd;
}

MSyntax addPolyCmd::newSyntax() {
  return MSyntax();
}

bool addPolyCmd::isUndoable() const {
  return true;
}

MStatus addPolyCmd::doIt(const MArgList&) {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  if (selection.length() >= 2) {
    displayError("AddPolygon profile command does not work on multiple objects selected.");
    return MS::kFailure;
  }
  selection.getDagPath(0, edit.mesh);
  if (!edit.mesh.isValid()) {
    displayError(MString("invalid Mesh shape path: ") + edit.mesh.fullPathName());
    return MS::kFailure;
  }
  // Nothing here says which points to join.
  displayError("there was an error adding the polygon.");
  return MS::kFailure;
}

MStatus addPolyCmd::redoIt() {
  return edit.insert();
}

MStatus addPolyCmd::undoIt() {
  edit.remove();
  return MS::kSuccess;
}
