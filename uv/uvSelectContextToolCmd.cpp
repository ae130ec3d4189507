#include "uv/uvSelectContextToolCmd.h"

#include <maya/MArgList.h>
#include <maya/MGlobal.h>

#include "uv/uvSelectContext.h"

uvSelectContextToolCmd::uvSelectContextToolCmd() {
  setCommandString("uvSelect_contextCmd");
}

uvSelectContextToolCmd::~uvSelectContextToolCmd() = default;

void* uvSelectContextToolCmd::creator() {
  return new uvSelectContextToolCmd;
}

void uvSelectContextToolCmd::setStates(const state& before, const state& after) {
  stateBefore = before;
  stateAfter = after;
}

MStatus uvSelectContextToolCmd::show(const state& wanted) {
  uvSelectContext::setLastPick(wanted.lastPick);
  return MGlobal::setActiveSelectionList(wanted.selection, MGlobal::kReplaceList);
}

MStatus uvSelectContextToolCmd::doIt(const MArgList&) {
  return redoIt();
}
MStatus uvSelectContextToolCmd::redoIt() {
  return show(stateAfter);
}
MStatus uvSelectContextToolCmd::undoIt() {
  return show(stateBefore);
}

MStatus uvSelectContextToolCmd::finalize() {
  MArgList command;
  command.addArg(commandString());
  return MPxToolCommand::doFinalize(command);
}
