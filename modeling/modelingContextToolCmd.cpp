#include "modeling/modelingContextToolCmd.h"

#include <maya/MArgList.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

modelingContextToolCmd::modelingContextToolCmd() {
  setCommandString("modeling_contextCmd");
}

modelingContextToolCmd::~modelingContextToolCmd() = default;

void* modelingContextToolCmd::creator() {
  return new modelingContextToolCmd;
}

MStatus modelingContextToolCmd::doIt(const MArgList&) {
  return redoIt();
}

MStatus modelingContextToolCmd::redoIt() {
  return selectionOnly ? MGlobal::setActiveSelectionList(selectionAfter, MGlobal::kReplaceList)
                       : writePoints(pointsAfter, placesAfter);
}

MStatus modelingContextToolCmd::undoIt() {
  return selectionOnly ? MGlobal::setActiveSelectionList(selectionBefore, MGlobal::kReplaceList)
                       : writePoints(pointsBefore, placesBefore);
}

MStatus modelingContextToolCmd::writePoints(const MPointArray& points,
                                            const storedPlaces& places) const {
  if (!meshPath.isValid()) return MS::kFailure;
  MStatus status;
  MFnMesh mesh(meshPath, &status);
  if (status != MS::kSuccess) return status;
  status = places.putAllBack(meshPath, points);
  if (status == MS::kSuccess) status = mesh.updateSurface();
  return status;
}

MStatus modelingContextToolCmd::finalize() {
  MArgList command;
  command.addArg(commandString());
  return MPxToolCommand::doFinalize(command);
}

MStatus modelingContextToolCmd::setSelectionBefore(const MSelectionList& list) {
  selectionBefore = list;
  return MS::kSuccess;
}
MStatus modelingContextToolCmd::setSelectionAfter(const MSelectionList& list) {
  selectionAfter = list;
  return MS::kSuccess;
}
MStatus modelingContextToolCmd::setPointsBefore(const MPointArray& points) {
  pointsBefore = points;
  return MS::kSuccess;
}
MStatus modelingContextToolCmd::setPointsAfter(const MPointArray& points) {
  pointsAfter = points;
  return MS::kSuccess;
}

MStatus modelingContextToolCmd::setMeshPath(const MDagPath& path) {
  if (path.isValid()) meshPath = path;
  return MS::kSuccess;
}

void modelingContextToolCmd::setPlaces(const storedPlaces& before, const storedPlaces& after) {
  placesBefore = before;
  placesAfter = after;
}
