#include "commands/makePlanarCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFn.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItSelectionList.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include "commands/componentGather.h"
#include "commands/mirrorOptions.h"
#include "commands/planarPlan.h"
#include "commands/worldPoints.h"

makePlanarCmd::makePlanarCmd() : mirrorAxis(mirrorOptions::kNoMirrorOption), mirrorInObjectSpace(1) {}

void* makePlanarCmd::creator() { return new makePlanarCmd; }

MSyntax makePlanarCmd::newSyntax() { return MSyntax(); }

MStatus makePlanarCmd::gather(const mirrorOptions& mirror) {
  MSelectionList selection;
  const MStatus status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  for (MItSelectionList item(selection, MFn::kMeshPolygonComponent); !item.isDone(); item.next()) {
    MObject component;
    if (item.getDagPath(dagPath, component) != MS::kSuccess || component.isNull()) continue;
    const mirrorPlane plane(dagPath, mirror);
    MVector normal;
    MIntArray corners;
    for (MItMeshPolygon face(dagPath, component); !face.isDone(); face.next()) {
      face.getNormal(normal, MSpace::kWorld);
      const bool isPositive = mirror.isOn() && plane.isPositive(face.center(MSpace::kWorld));
      (isPositive ? positiveNormals : negativeNormals).append(normal);
      face.getVertices(corners);
      for (unsigned int i = 0; i < corners.length(); ++i) vertexIds.append(corners[i]);
    }
  }
  makeUniqueAscending(vertexIds);
  return MS::kSuccess;
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
  mirrorInObjectSpace = mirror.inObjectSpace;
  status = gather(mirror);
  if (status != MS::kSuccess) return status;
  if (vertexIds.length() == 0) return redoIt();  // nothing gathered: fails on the path that was never set

  MPointArray points;
  status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
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
  justRead = &points;
  status = redoIt();
  justRead = nullptr;
  return status;
}

MStatus makePlanarCmd::redoIt() { return writeWorldPoints(dagPath, vertexIds, planarPositions, justRead); }

MStatus makePlanarCmd::undoIt() { return savedPlaces.putBack(dagPath, vertexIds, savedPositions); }
