#include "commands/straightenCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "commands/straightenPlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/mirrorOptions.h"

namespace {

constexpr const char* kAxisFlag = "-ax";
constexpr const char* kAxisMirrorFlag = "-axm";
constexpr const char* kAverageFlag = "-av";

/// The place of `text` among `names`, or `otherwise`.
int codeOf(const MString& text, const char* const* names, int count, int otherwise) {
  for (int i = 0; i < count; ++i)
    if (text == names[i]) return i;
  return otherwise;
}

}  // namespace

straightenCmd::straightenCmd()
    : keepAxes(kKeepNone), average(false), mirrorAxis(6), mirrorInObjectSpace(1) {}

void* straightenCmd::creator() {
  return new straightenCmd;
}

MSyntax straightenCmd::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kAxisFlag, "-axis", MSyntax::kString);
  syntax.addFlag(kAxisMirrorFlag, "-axisMirror", MSyntax::kString);
  syntax.addFlag(kAverageFlag, "-average", MSyntax::kBoolean);
  return syntax;
}

MStatus straightenCmd::parseArguments(const MArgList& arguments) {
  keepAxes = kKeepNone;
  mirrorAxis = 6;
  average = false;
  MStatus parsed, status;
  const MArgDatabase database(syntax(), arguments, &parsed);

  if (database.isFlagSet(kAxisFlag)) {
    MString text;
    status = database.getFlagArgument(kAxisFlag, 0, text);
    if (status != MS::kSuccess) {
      status.perror("could not parse straighten axis command message set");
      return status;
    }
    static const char* const kNames[] = {"x", "y", "z", "xy", "xz", "yz", "all"};
    keepAxes = codeOf(text, kNames, 7, keepAxes);
  }
  if (database.isFlagSet(kAxisMirrorFlag)) {
    MString text;
    status = database.getFlagArgument(kAxisMirrorFlag, 0, text);
    if (status != MS::kSuccess) {
      status.perror("could not parse straighten mirror axis command message set");
      return status;
    }
    static const char* const kNames[] = {"x", "y", "z"};
    mirrorAxis = codeOf(text, kNames, 3, mirrorAxis);
  }
  if (database.isFlagSet(kAverageFlag)) {
    status = database.getFlagArgument(kAverageFlag, 0, average);
    if (status != MS::kSuccess) {
      status.perror("could not parse straighten average message set");
      return status;
    }
  }
  if (parsed != MS::kSuccess) return parsed;  // words that are no flag of this command
  mirrorInObjectSpace = mirrorOptions::worldSpaceFromWindow(mirrorInObjectSpace != 0) ? 1 : 0;
  return MS::kSuccess;
}

MStatus straightenCmd::gather() {
  MSelectionList selection;
  const MStatus status = singleObjectSelection(selection);
  if (status != MS::kSuccess) return status;
  appendSelectedVertices(selection, dagPath, vertexIds);
  appendSelectedEdgeEnds(selection, dagPath, vertexIds);
  vertexIds = mathHelper().uniqueSorted(vertexIds);
  return MS::kSuccess;
}

MStatus straightenCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  status = gather();
  if (status != MS::kSuccess) return status;
  if (vertexIds.length() == 0)
    return redoIt();  // no components: fails on the path that was never set

  MPointArray points;
  status = readWorldPoints(dagPath, points);
  if (status != MS::kSuccess) return status;
  if (!idsAreInRange(vertexIds, points.length())) return MS::kFailure;

  mirrorOptions mirror;
  mirror.axis = mirrorAxis;
  mirror.inWorldSpace = mirrorInObjectSpace != 0;
  const bool isSplit = splitByMirror(vertexIds, points, dagPath, mirror);
  savedPositions = pointsAt(points, vertexIds);
  if (!positionsAreFinite("qxStraightenCmd", vertexIds, savedPositions)) return MS::kFailure;
  straightPositions = savedPositions;

  const unsigned int count = vertexIds.length();
  if (isSplit) {
    const unsigned int half = count / 2;
    straightenRun(straightPositions, 0, half, keepAxes);
    straightenRun(straightPositions, count - half, half, keepAxes);
  } else {
    straightenRun(straightPositions, 0, count, keepAxes);
  }
  if ((status = savedPlaces.take(dagPath, vertexIds)) != MS::kSuccess) return status;
  return writeWorldPoints(dagPath, vertexIds, straightPositions, &points);
}

MStatus straightenCmd::redoIt() {
  return writeWorldPoints(dagPath, vertexIds, straightPositions);
}

MStatus straightenCmd::undoIt() {
  return savedPlaces.putBack(dagPath, vertexIds, savedPositions);
}
