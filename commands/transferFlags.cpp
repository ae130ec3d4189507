#include "commands/transferFlags.h"

#include <maya/MArgDatabase.h>
#include <maya/MDistance.h>
#include <maya/MGlobal.h>
#include <maya/MPxCommand.h>
#include <maya/MString.h>

#include "shared/settings/flagReader.h"

namespace {
constexpr const char* kSpaceFlag = "-sp";
constexpr const char* kDistanceFlag = "-md";
}  // namespace

MSyntax transferSyntax() {
  MSyntax syntax;
  syntax.addFlag(kSpaceFlag, "-space", MSyntax::kString);
  syntax.addFlag(kDistanceFlag, "-maxDistance", MSyntax::kDistance);
  syntax.addFlag(kHelpFlag, "-help", MSyntax::kNoArg);
  return syntax;
}

MStatus readTransferFlags(const char* command, const MArgDatabase& database, MSpace::Space& space,
                          double& maxDistance) {
  MString name(space == MSpace::kWorld ? "world" : "object");
  MDistance distance(maxDistance);
  MStatus status = readFlag(database, kSpaceFlag, name, "could not parse space");
  if (status == MS::kSuccess)
    status = readFlag(database, kDistanceFlag, distance, "could not parse largest distance");
  if (status != MS::kSuccess) return status;
  if (name != "world" && name != "object") {
    MGlobal::displayError(MString(command) + ": the space is world or object, not " + name);
    return MS::kFailure;
  }
  space = name == "world" ? MSpace::kWorld : MSpace::kObject;
  maxDistance = distance.asCentimeters();
  if (maxDistance >= 0.0) return MS::kSuccess;
  MGlobal::displayError(MString(command) + ": the largest distance can't be negative");
  return MS::kFailure;
}

MStatus showHelp(const char* text) {
  MGlobal::displayInfo(text);
  MPxCommand::setResult(text);
  return MS::kSuccess;
}

void reportTransfer(const char* command, const char* whatTheyDid, int changed, int unplaced) {
  MString text(command);
  text += ": ";
  text += changed;
  text += changed == 1 ? " vertex " : " vertices ";
  text += whatTheyDid;
  if (unplaced == 0) {
    MGlobal::displayInfo(text);
    return;
  }
  text += ", ";
  text += unplaced;
  text += " found no place";
  MGlobal::displayWarning(text);
}
