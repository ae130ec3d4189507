#include "commands/circleVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include "commands/circlePlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/worldPoints.h"
#include "shared/numeric/pointIndex.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/mirrorOptions.h"

namespace {
/// A mirrored point farther than this from every point of the other half has no partner.
constexpr double kMatchLimit = 50000.0;

const char* faultText(circleFault fault) {
  return fault == circleFault::tooFewPoints
             ? "qxCircleVertsCmd: a circle needs at least three vertices"
             : "qxCircleVertsCmd: the vertices lie on one line";
}
}  // namespace

circleVertsCmd::circleVertsCmd()
    : mirrorAxis(mirrorOptions::kNoMirrorOption), mirrorInObjectSpace(1) {}

void* circleVertsCmd::creator() {
  return new circleVertsCmd;
}

MSyntax circleVertsCmd::newSyntax() {
  return MSyntax();
}

MStatus circleVertsCmd::gather() {
  MSelectionList selection;
  const MStatus status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  appendSelectedVertices(selection, dagPath, vertexIds);
  appendSelectedEdgeEnds(selection, dagPath, vertexIds);
  appendSelectedFaceVertices(selection, dagPath, vertexIds);
  vertexIds = mathHelper().uniqueSorted(vertexIds);
  return MS::kSuccess;
}

MVector circleVertsCmd::meanNormal(unsigned int count) const {
  const MFnMesh meshFn(dagPath);
  MVector sum, normal;
  // One question for all normals costs less than many for one each, once they are a good part of
  // the mesh.
  if (count > static_cast<unsigned int>(meshFn.numVertices()) / 8) {
    MFloatVectorArray all;
    meshFn.getVertexNormals(false, all, MSpace::kWorld);
    for (unsigned int i = 0; i < count; ++i)
      sum += MVector(all[static_cast<unsigned int>(vertexIds[i])]);
    return sum;
  }
  for (unsigned int i = 0; i < count; ++i)
    if (meshFn.getVertexNormal(vertexIds[i], normal, MSpace::kWorld) == MS::kSuccess) sum += normal;
  return sum;
}

void circleVertsCmd::mirrorSecondHalf(const mirrorOptions& mirror) {
  const unsigned int half = vertexIds.length() / 2;
  const mirrorPlane plane = mirror.plane(dagPath);
  const pointIndex firstHalf(savedPositions, 0, half);
  for (unsigned int i = half; i < vertexIds.length(); ++i) {
    const int partner = firstHalf.nearest(plane.reflect(savedPositions[i]), kMatchLimit);
    if (partner >= 0)
      circlePositions[i] = plane.reflect(circlePositions[static_cast<unsigned int>(partner)]);
  }
}

MStatus circleVertsCmd::doIt(const MArgList& arguments) {
  MStatus status;
  const MArgDatabase database(syntax(), arguments, &status);
  if (status != MS::kSuccess) return status;
  const mirrorOptions mirror = mirrorOptions::fromWindow();
  mirrorAxis = mirror.axis;
  mirrorInObjectSpace = mirror.inWorldSpace ? 1 : 0;
  status = gather();
  if (status != MS::kSuccess) return status;
  if (vertexIds.length() == 0)
    return redoIt();  // no components: fails on the path that was never set

  MPointArray points;
  status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;
  const bool isSplit = splitByMirror(vertexIds, points, dagPath, mirror);
  savedPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite("qxCircleVertsCmd", vertexIds, savedPositions)) return MS::kFailure;
  circlePositions = savedPositions;

  const unsigned int count = isSplit ? vertexIds.length() / 2 : vertexIds.length();
  const circleFault fault = circleRun(circlePositions, 0, count, meanNormal(count));
  if (fault != circleFault::none) {
    MGlobal::displayError(faultText(fault));
    return MS::kFailure;
  }
  if (isSplit) mirrorSecondHalf(mirror);
  if ((status = savedPlaces.take(dagPath, vertexIds)) != MS::kSuccess) return status;
  return writeWorldPoints(dagPath, vertexIds, circlePositions, &points);
}

MStatus circleVertsCmd::redoIt() {
  return writeWorldPoints(dagPath, vertexIds, circlePositions);
}

MStatus circleVertsCmd::undoIt() {
  return savedPlaces.putBack(dagPath, vertexIds, savedPositions);
}
