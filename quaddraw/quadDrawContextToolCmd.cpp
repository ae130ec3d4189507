#include "quaddraw/quadDrawContextToolCmd.h"

#include <maya/MArgList.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#include "quaddraw/quadDrawLocator.h"

quadDrawContextToolCmd::quadDrawContextToolCmd() {
  setCommandString("quadDrawContextToolCmd");
}

quadDrawContextToolCmd::~quadDrawContextToolCmd() = default;

void* quadDrawContextToolCmd::creator() {
  return new quadDrawContextToolCmd;
}

void quadDrawContextToolCmd::setPoints(const MPointArray& before, const MPointArray& after) {
  pointsBefore = before;
  pointsAfter = after;
  changesPoints = true;
}

void quadDrawContextToolCmd::setPolygon(const MDagPath& mesh, const MPointArray& points,
                                        bool isMirrored, const MPointArray& mirrorPoints) {
  polygon.mesh = mesh;
  polygon.points = points;
  polygon.isMirrored = isMirrored;
  polygon.mirrorPoints = mirrorPoints;
  isPolygon = true;
}

MStatus quadDrawContextToolCmd::doIt(const MArgList&) {
  if (isPolygon) {
    const MStatus found = polygon.mesh.extendToShape();
    if (found != MS::kSuccess) return found;
    const MFnDependencyNode shape(polygon.mesh.node());
    MStatus hasInput;
    const MPlug input = shape.findPlug("inMesh", false, &hasInput);
    polygon.hasTweakNode = hasInput == MS::kSuccess && input.isConnected();
  }
  return redoIt();
}

MStatus quadDrawContextToolCmd::redoIt() {
  if (isPolygon) {
    const MStatus inserted = polygon.insert();
    if (inserted != MS::kSuccess) return inserted;
  }
  return writePoints(pointsAfter);
}

MStatus quadDrawContextToolCmd::undoIt() {
  if (isPolygon) {
    const MStatus removed = polygon.remove();
    if (removed != MS::kSuccess) return removed;
  }
  return writePoints(pointsBefore);
}

MStatus quadDrawContextToolCmd::writePoints(const MPointArray& points) const {
  if (!changesPoints || !locator.isValid() || !locator.isAlive()) return MS::kSuccess;
  MStatus made;
  const MObject data = MFnPointArrayData().create(points, &made);
  if (made != MS::kSuccess) return made;
  return MPlug(locator.object(), quadDrawLocator::pointArray).setMObject(data);
}

MStatus quadDrawContextToolCmd::finalize() {
  MArgList command;
  command.addArg(commandString());
  return MPxToolCommand::doFinalize(command);
}
