#include "commands/makePlanarCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFn.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include "commands/planarPlan.h"
#include "shared/mesh/faceFrame.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/mirrorSides.h"

makePlanarCmd::makePlanarCmd()
    : reshapeCmd("qxMakePlanarCmd"),
      mirrorAxis(mirrorOptions::kNoMirrorOption),
      mirrorInObjectSpace(1) {}

void* makePlanarCmd::creator() {
  return new makePlanarCmd;
}

MSyntax makePlanarCmd::newSyntax() {
  return MSyntax();
}

MStatus makePlanarCmd::gather() {
  MSelectionList selection;
  const MStatus status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  for (MItSelectionList item(selection, MFn::kMeshPolygonComponent); !item.isDone(); item.next()) {
    MObject component;
    if (item.getDagPath(dagPath, component) == MS::kSuccess && !component.isNull())
      faces.take(dagPath, component);
  }
  vertexIds = mathHelper().uniqueSorted(faces.connects);
  return MS::kSuccess;
}

void makePlanarCmd::sortNormals(const MPointArray& points) {
  mirrorOptions mirror;
  mirror.axis = mirrorAxis;
  mirror.inWorldSpace = mirrorInObjectSpace != 0;
  const mirrorSides sides(dagPath, mirror, points);
  // Seen in a mirroring transform faces run the other way round than their normals are.
  const double turned = dagPath.inclusiveMatrix().det3x3() < 0.0 ? -1.0 : 1.0;
  unsigned int corner = 0;
  for (unsigned int f = 0; f < faces.counts.length(); ++f) {
    const unsigned int count = static_cast<unsigned int>(faces.counts[f]);
    const bool isPositive = mirror.isOn() && sides.isMeanPositive(faces.connects, corner, count);
    (isPositive ? positiveNormals : negativeNormals)
        .append(faceFrameOf(points, faces.connects, corner, count).normal * turned);
    corner += count;
  }
}

MStatus makePlanarCmd::plan(const MPointArray& points, MPointArray& positions) {
  sortNormals(points);
  faces = selectedPolygons();
  // A side without faces of its own is flattened as all are.
  const MVector all = sumOf(negativeNormals) + sumOf(positiveNormals);
  const auto normalOf = [&](const MVectorArray& normals) {
    return normals.length() > 0 ? meanVector(normals) : all;
  };
  const unsigned int run = firstRun(), count = positions.length();
  if (flattenRun(positions, 0, run, normalOf(negativeNormals)) &&
      (!isSplit || flattenRun(positions, count - run, run, normalOf(positiveNormals))))
    return MS::kSuccess;
  return refuse("the selected faces have no common plane");
}

MStatus makePlanarCmd::doIt(const MArgList& arguments) {
  MStatus status;
  const MArgDatabase database(syntax(), arguments, &status);
  if (status != MS::kSuccess) return status;
  const mirrorOptions mirror = mirrorOptions::fromWindow();
  mirrorAxis = mirror.axis;
  mirrorInObjectSpace = mirror.inWorldSpace ? 1 : 0;
  status = gather();
  return status == MS::kSuccess ? reshape(mirror, planarPositions) : status;
}

MStatus makePlanarCmd::redoIt() {
  return write(planarPositions);
}
