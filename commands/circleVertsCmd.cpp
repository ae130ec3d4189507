#include "commands/circleVertsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MSelectionList.h>
#include <maya/MVector.h>

#include "commands/circlePlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/mirrorPlane.h"
#include "shared/numeric/pointIndex.h"
#include "shared/selection/componentGather.h"

namespace {
/// A mirrored point farther than this from every point of the other half has no partner.
constexpr double kMatchLimit = 50000.0;

const char* faultText(circleFault fault) {
  return fault == circleFault::tooFewPoints
             ? "a circle needs at least three vertices"
             : "the vertices lie in one place, or on a line along their normal";
}
}  // namespace

circleVertsCmd::circleVertsCmd()
    : reshapeCmd("qxCircleVertsCmd"),
      mirrorAxis(mirrorOptions::kNoMirrorOption),
      mirrorInObjectSpace(1) {}

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

void circleVertsCmd::mirrorSecondHalf(MPointArray& positions) const {
  const unsigned int half = firstRun();
  const mirrorPlane plane(dagPath, mirrorAxis, mirrorInObjectSpace != 0);
  const pointIndex firstHalf(savedPositions, 0, half);
  for (unsigned int i = half; i < vertexIds.length(); ++i) {
    const int partner = firstHalf.nearest(plane.reflect(savedPositions[i]), kMatchLimit);
    if (partner >= 0) positions[i] = plane.reflect(positions[static_cast<unsigned int>(partner)]);
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
  return status == MS::kSuccess ? reshape(mirror, circlePositions) : status;
}

MStatus circleVertsCmd::plan(const MPointArray&, MPointArray& positions) {
  const unsigned int count = firstRun();
  const circleFault fault = circleRun(positions, 0, count, meanNormal(count));
  if (fault != circleFault::none) return refuse(faultText(fault));
  if (isSplit) mirrorSecondHalf(positions);
  return MS::kSuccess;
}

MStatus circleVertsCmd::redoIt() {
  return write(circlePositions);
}
