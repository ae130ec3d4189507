#include "brushes/baseBrushContextToolCmd.h"

#include <maya/MArgList.h>

brushRecord::~brushRecord() = default;

baseBrushContextToolCmd::baseBrushContextToolCmd() {
  setCommandString("baseBrush_contextCmd");
}

baseBrushContextToolCmd::~baseBrushContextToolCmd() = default;

void* baseBrushContextToolCmd::creator() {
  return new baseBrushContextToolCmd;
}

MStatus baseBrushContextToolCmd::doIt(const MArgList&) {
  return redoIt();
}

MStatus baseBrushContextToolCmd::redoIt() {
  return show(true);
}

MStatus baseBrushContextToolCmd::undoIt() {
  return show(false);
}

MStatus baseBrushContextToolCmd::show(bool after) {
  if (!record) return MS::kFailure;
  record->isUndone = !after;
  return record->isEmptied ? MStatus(MS::kSuccess) : record->show(after);
}

MStatus baseBrushContextToolCmd::finalize() {
  MArgList command;
  command.addArg(commandString());
  return MPxToolCommand::doFinalize(command);
}
