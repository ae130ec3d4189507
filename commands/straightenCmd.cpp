#include "commands/straightenCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "commands/straightenPlan.h"
#include "shared/mesh/mathHelper.h"
#include "shared/selection/componentGather.h"
#include "shared/settings/flagReader.h"

namespace {

constexpr const char* kAxisFlag = "-ax";
constexpr const char* kAxisMirrorFlag = "-axm";
constexpr const char* kAverageFlag = "-av";
constexpr int kNoSplit = 6;

/// The place of `text` among `names`, or `otherwise`.
template <int count>
int codeOf(const MString& text, const char* const (&names)[count], int otherwise) {
  for (int i = 0; i < count; ++i)
    if (text == names[i]) return i;
  return otherwise;
}

}  // namespace

straightenCmd::straightenCmd()
    : reshapeCmd("qxStraightenCmd"),
      keepAxes(kKeepNone),
      average(false),
      mirrorAxis(kNoSplit),
      mirrorInObjectSpace(1) {}

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
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MString keep, split;
  MStatus status =
      readFlag(database, kAxisFlag, keep, "could not parse straighten axis command message set");
  if (status == MS::kSuccess)
    status = readFlag(database, kAxisMirrorFlag, split,
                      "could not parse straighten mirror axis command message set");
  if (status == MS::kSuccess)
    status =
        readFlag(database, kAverageFlag, average, "could not parse straighten average message set");
  if (status != MS::kSuccess) return status;
  if (parsed != MS::kSuccess) return parsed;  // words that are no flag of this command
  keepAxes = codeOf(keep, {"x", "y", "z", "xy", "xz", "yz", "all"}, kKeepNone);
  mirrorAxis = codeOf(split, {"x", "y", "z"}, kNoSplit);
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
  if (status == MS::kSuccess) status = gather();
  if (status != MS::kSuccess) return status;
  mirrorOptions mirror;
  mirror.axis = mirrorAxis;
  mirror.inWorldSpace = mirrorInObjectSpace != 0;
  return reshape(mirror, straightPositions);
}

MStatus straightenCmd::plan(const MPointArray&, MPointArray& positions) {
  const unsigned int half = firstRun(), count = positions.length();
  straightenRun(positions, 0, half, keepAxes);
  if (isSplit) straightenRun(positions, count - half, half, keepAxes);
  return MS::kSuccess;
}

MStatus straightenCmd::redoIt() {
  return write(straightPositions);
}
