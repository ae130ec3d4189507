#include "commands/makePlanarCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFn.h>
#include <maya/MGlobal.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include <utility>

#include "commands/planarPlan.h"
#include "shared/mesh/faceFrame.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/mirrorOptions.h"

makePlanarCmd::makePlanarCmd()
    : mirrorAxis(mirrorOptions::kNoMirrorOption), mirrorInObjectSpace(1) {}

void* makePlanarCmd::creator() {
  return new makePlanarCmd;
}

MSyntax makePlanarCmd::newSyntax() {
  return MSyntax();
}

MStatus makePlanarCmd::gather(const mirrorOptions& mirror, MPointArray& points) {
  MSelectionList selection;
  MStatus status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  for (MItSelectionList item(selection, MFn::kMeshPolygonComponent); !item.isDone(); item.next()) {
    MObject component;
    if (item.getDagPath(dagPath, component) != MS::kSuccess || component.isNull()) continue;
    selectedPolygons faces;
    faces.take(dagPath, component);
    if (faces.counts.length() == 0) continue;
    if ((status = readWorldPoints(dagPath, points)) != MS::kSuccess) return status;
    sortNormals(faces, points, mirror);
    std::swap(vertexIds, faces.connects);
  }
  vertexIds = mathHelper().uniqueSorted(vertexIds);
  return MS::kSuccess;
}

void makePlanarCmd::sortNormals(const selectedPolygons& faces, const MPointArray& points,
                                const mirrorOptions& mirror) {
  const mirrorPlane plane = mirror.plane(dagPath);
  // Seen in a mirroring transform faces run the other way round than their normals are.
  const double side = dagPath.inclusiveMatrix().det3x3() < 0.0 ? -1.0 : 1.0;
  negativeNormals.setLength(faces.counts.length());
  unsigned int corner = 0, negatives = 0;
  for (unsigned int f = 0; f < faces.counts.length(); ++f) {
    const unsigned int count = static_cast<unsigned int>(faces.counts[f]);
    const faceFrame face = faceFrameOf(points, faces.connects, corner, count);
    corner += count;
    if (mirror.isOn() && plane.isPositive(face.centre))
      positiveNormals.append(face.normal * side);
    else
      negativeNormals[negatives++] = face.normal * side;
  }
  negativeNormals.setLength(negatives);
}

bool makePlanarCmd::flatten(bool isSplit) {
  const unsigned int count = vertexIds.length();
  if (!isSplit) return flattenRun(planarPositions, 0, count, meanVector(negativeNormals));
  const unsigned int half = count / 2;
  return flattenRun(planarPositions, 0, half, meanVector(negativeNormals)) &&
         flattenRun(planarPositions, count - half, half, meanVector(positiveNormals));
}

MStatus makePlanarCmd::doIt(const MArgList& arguments) {
  MStatus status;
  const MArgDatabase database(syntax(), arguments, &status);
  if (status != MS::kSuccess) return status;
  const mirrorOptions mirror = mirrorOptions::fromWindow();
  mirrorAxis = mirror.axis;
  mirrorInObjectSpace = mirror.inWorldSpace ? 1 : 0;
  MPointArray points;
  status = gather(mirror, points);
  if (status != MS::kSuccess) return status;
  if (vertexIds.length() == 0)
    return redoIt();  // nothing gathered: fails on the path that was never set

  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  const bool isSplit = splitByMirror(vertexIds, points, dagPath, mirror);
  savedPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite("qxMakePlanarCmd", vertexIds, savedPositions)) return MS::kFailure;
  planarPositions = savedPositions;
  if (!flatten(isSplit)) {
    MGlobal::displayError("qxMakePlanarCmd: the selected faces have no common plane");
    return MS::kFailure;
  }
  if ((status = savedPlaces.take(dagPath, vertexIds)) != MS::kSuccess) return status;
  return writeWorldPoints(dagPath, vertexIds, planarPositions, &points);
}

MStatus makePlanarCmd::redoIt() {
  return writeWorldPoints(dagPath, vertexIds, planarPositions);
}

MStatus makePlanarCmd::undoIt() {
  return savedPlaces.putBack(dagPath, vertexIds, savedPositions);
}
