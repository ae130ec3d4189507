#include "commands/setCommands.h"

#include <maya/MArgDatabase.h>
#include <maya/MDagPath.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "commands/viewMessages.h"
#include "shared/selection/pickOrder.h"
#include "shared/settings/slideObject.h"
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

/// Gives the name of the object to slide on as the command's result: as it is called now, empty
/// when there is none.
MStatus tellSlideDag(const MString&) {
  MDagPath object = slideObject::current();
  if (object.isValid()) object.pop();
  MPxCommand::setResult(object.isValid() ? object.partialPathName() : MString());
  return MS::kSuccess;
}

MStatus clearSlideDag(const MString&) {
  slideObject::set(MDagPath());
  return MS::kSuccess;
}

/// Back to the values of a new installation, whether windows that show them are open or not.
MStatus resetControls(const MString&) {
  toolSettings::reset();
  return MS::kSuccess;
}

bool exists(const char* command) {
  int isThere = 0;
  MGlobal::executeCommand(MString("exists ") + command, isThere, false, false);
  return isThere != 0;
}

/// The marking command does these; it can be undone by itself.
MStatus mark(const MString& message) {
  if (!exists("qxMarkUVInformation")) return runToolMessage(message);
  const char* flag = message == "setAncorPoint"      ? "-mv"
                     : message == "removeAncorPoint" ? "-umv"
                     : message == "markEdges"        ? "-me"
                                                     : "-ume";
  return MGlobal::executeCommand(MString("qxMarkUVInformation ") + flag + " 1", false, true);
}

/// Pins what is selected of UV objects, and lets it go.
MStatus pin(const MString& message) {
  if (!exists("qxPinVertsCmd")) return runToolMessage(message);
  const MStatus status = MGlobal::executeCommand("qxPinVertsCmd -pinVert 1", false, true);
  return status == MS::kSuccess ? MGlobal::executeCommand("select -d", false, true) : status;
}

/// Frees all pinned vertices of the selected objects, or of the hilited ones.
MStatus unpin(const MString& message) {
  if (!exists("qxPinVertsCmd")) return runToolMessage(message);
  MSelectionList selected, hilited;
  MGlobal::getActiveSelectionList(selected);
  MGlobal::getHiliteList(hilited);
  if (selected.length() > 0 || hilited.length() == 0)
    return MGlobal::executeCommand("qxPinVertsCmd -clearPins 1", false, true);
  MGlobal::setActiveSelectionList(hilited);
  const MStatus status = MGlobal::executeCommand("qxPinVertsCmd -clearPins 1", false, true);
  MGlobal::setActiveSelectionList(selected);
  MGlobal::setHiliteList(hilited);
  return status;
}

MStatus buildUvObject(const MString& message) {
  if (!exists("qxBuildUVObject")) return runToolMessage(message);
  return MGlobal::executeCommand("qxBuildUVObject", false, true);
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
    {"setPinValues", pin},
    {"unPinValues", unpin},
    {"buildUVObject", buildUvObject},
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
    {"slideDagName", tellSlideDag},
    {"clearSlideDag", clearSlideDag},
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
