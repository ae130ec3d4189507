#include "commands/setCommands.h"

#include <maya/MArgDatabase.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>

#include "commands/viewMessages.h"
#include "shared/selection/pickOrder.h"
#include "shared/settings/storeValues.h"
#include "shared/settings/toolMessages.h"
#include "shared/settings/toolSettings.h"

namespace {

constexpr const char* kMessageFlag = "-ms";

MStatus readControls(const MString&) {
  storeValues(toolSettings::current());
  return MS::kSuccess;
}

/// Gives the vertex that was picked last as the command's result.
MStatus tellLastPicked(const MString&) {
  MPxCommand::setResult(pickOrder::lastVertex());
  return MS::kSuccess;
}

/// Back to the values of a new installation, whether windows that show them are open or not.
MStatus resetControls(const MString&) {
  toolSettings::reset();
  return MS::kSuccess;
}

/// The marking command does these; it can be undone by itself.
MStatus mark(const MString& message) {
  int isThere = 0;
  MGlobal::executeCommand("exists qxMarkUVInformation", isThere, false, false);
  if (isThere == 0) return runToolMessage(message);
  const char* flag = message == "setAncorPoint"      ? "-mv"
                     : message == "removeAncorPoint" ? "-umv"
                     : message == "markEdges"        ? "-me"
                                                     : "-ume";
  return MGlobal::executeCommand(MString("qxMarkUVInformation ") + flag + " 1", false, true);
}

MStatus tellLicence(const MString&) {
  MGlobal::displayInfo("The toolkit needs no licence.");
  return MS::kSuccess;
}

MStatus checkForUpdates(const MString&) {
  return MGlobal::executeCommand("checkForUpdates_QXMT_Proc", false, false);
}

struct messageRow {
  const char* message;
  MStatus (*run)(const MString& message);
};

constexpr messageRow kMessages[] = {
    {"storeValues", readControls},
    {"setSlideDag", setSlideDag},
    {"setPinValues", runToolMessage},
    {"unPinValues", runToolMessage},
    {"buildUVObject", runToolMessage},
    {"setAncorPoint", mark},
    {"removeAncorPoint", mark},
    {"markEdges", mark},
    {"unMarkEdges", mark},
    {"customFrame", customFrame},
    {"checkLicense", tellLicence},
    {"activationCode", tellLicence},
    {"trialsLeft", tellLicence},
    {"checkForUpdates", checkForUpdates},
    {"resetValues", resetControls},
    {"lastPickedVertex", tellLastPicked},
};

}  // namespace

void* setCommands::creator() {
  return new setCommands;
}

MSyntax setCommands::newSyntax() {
  MSyntax syntax;
  syntax.addFlag(kMessageFlag, "-mset", MSyntax::kString);
  return syntax;
}

MStatus setCommands::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  if (!database.isFlagSet(kMessageFlag)) {
    if (parsed != MS::kSuccess) parsed.perror("could not parse message set");
    return parsed;
  }
  MString message;
  const MStatus status = database.getFlagArgument(kMessageFlag, 0, message);
  if (status != MS::kSuccess) {
    status.perror("could not parse message set");
    return status;
  }
  for (const messageRow& row : kMessages)
    if (message == row.message) return row.run(message);
  return MS::kSuccess;
}
