#include "commands/projectMeshOnMeshCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include "commands/dropSpace.h"
#include "shared/mesh/worldPoints.h"
#include "shared/selection/meshPair.h"
#include "shared/settings/flagReader.h"
#include "shared/tool/shownComputation.h"

namespace {

constexpr const char* kDirectionFlag = "-wd";
constexpr double kMaxParam = 1e6;
constexpr float kTolerance = 1e-6F;

/// What the host answered instead of a hit or a miss, said once a command however many rays it
/// befalls.
class rayFaults {
 public:
  void note(const MStatus& status) {
    if (status == MS::kInvalidParameter)
      say(saidParam, "intersection test resulted in a param");
    else if (status != MS::kSuccess)
      say(saidFailure, "intersection test resulted in a failure");
  }

 private:
  static void say(bool& isSaid, const char* text) {
    if (!isSaid) MGlobal::displayError(text);
    isSaid = true;
  }
  bool saidParam = false, saidFailure = false;
};

/// The space that a wrap direction stands for; false when it is none.
bool spaceOf(const MString& direction, const MDagPath& moved, dropSpace& space) {
  static const char* const kAxes[] = {"x", "y", "z"};
  for (unsigned int i = 0; i < 3; ++i) {
    if (direction != kAxes[i]) continue;
    space.axis = i;
    return true;
  }
  if (direction != "objectYRotation") return false;
  space.isWorld = false;
  space.toWorld = moved.inclusiveMatrix();
  space.fromWorld = moved.inclusiveMatrixInverse();
  return true;
}

MStatus refuse(const MString& text) {
  MGlobal::displayError("projectMeshOnMeshCmd: " + text);
  return MS::kFailure;
}

}  // namespace

projectMeshOnMeshCmd::projectMeshOnMeshCmd() : accelParams(MFnMesh::autoUniformGridParams()) {}

projectMeshOnMeshCmd::~projectMeshOnMeshCmd() = default;

void* projectMeshOnMeshCmd::creator() {
  return new projectMeshOnMeshCmd;
}

MSyntax projectMeshOnMeshCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kDirectionFlag, "-wrapDirection", MSyntax::kString);
  return syntax;
}

MStatus projectMeshOnMeshCmd::drop(const MDagPath& target, const dropSpace& space) {
  // A mesh that falls along its own axis is met where the target stands: rays along that axis hit
  // the same places as rays down the world's axis would after taking both into the moved mesh's
  // space, and the target needs no change.
  MVector down = space.down();
  const double stretch = down.length();
  down /= stretch;
  const MFloatVector direction(down);
  const float maxParam = static_cast<float>(kMaxParam * stretch);

  MFnMesh targetFn(target);
  const double base = space.lowest(pointsBefore);
  pointsAfter.setLength(pointsBefore.length());
  rayFaults faults;
  shownComputation work("Dropping", static_cast<int>(pointsBefore.length()));
  for (unsigned int i = 0; i < pointsBefore.length() && !work.advance(); ++i) {
    const MPoint& point = pointsBefore[i];
    MFloatPoint hit;
    MStatus status;
    const bool isHit = targetFn.closestIntersection(
        MFloatPoint(point), direction, nullptr, nullptr, false, MSpace::kWorld, maxParam, true,
        &accelParams, hit, nullptr, nullptr, nullptr, nullptr, nullptr, kTolerance, &status);
    faults.note(status);
    const MPoint fellOn(hit);
    pointsAfter[i] = space.land(point, isHit && status == MS::kSuccess ? &fellOn : nullptr, base);
  }
  MFnMesh::clearGlobalIntersectionAcceleratorInfo();
  targetFn.freeCachedIntersectionAccelerator();
  return work.isStopped() ? MS::kFailure : MS::kSuccess;
}

MStatus projectMeshOnMeshCmd::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status = readFlag(database, kDirectionFlag, wrapDirection, "could not parse message set");
  if (status != MS::kSuccess) return status;
  if (parsed != MS::kSuccess) return parsed;
  if (wrapDirection.length() == 0) return MS::kFailure;

  meshPair pair;
  status = pair.takeSelection("projectMeshOnMeshCmd",
                              "this function only works with 2 objects selected");
  if (status != MS::kSuccess) return status;
  movedPath = pair.first;
  dropSpace space;
  if (!spaceOf(wrapDirection, movedPath, space))
    return refuse("the wrap direction is x, y, z or objectYRotation, not " + wrapDirection);
  if (!space.isWorld && space.toWorld.isSingular())
    return refuse(movedPath.partialPathName() +
                  " is scaled to nothing, so it has no Y axis to fall along");
  for (const MDagPath* path : {&pair.first, &pair.second})
    if ((status = requireFaces("projectMeshOnMeshCmd", *path)) != MS::kSuccess) return status;
  if ((status = readWorldPoints(movedPath, pointsBefore)) != MS::kSuccess) return status;
  if (!positionsAreFinite("projectMeshOnMeshCmd", pointsBefore)) return MS::kFailure;
  if ((status = placesBefore.takeAll(movedPath)) != MS::kSuccess) return status;

  status = drop(pair.second, space);
  return status == MS::kSuccess ? redoIt() : status;
}

MStatus projectMeshOnMeshCmd::undoIt() {
  return placesBefore.putAllBack(movedPath, pointsBefore);
}

MStatus projectMeshOnMeshCmd::redoIt() {
  return writeAllWorldPoints(movedPath, pointsAfter);
}
