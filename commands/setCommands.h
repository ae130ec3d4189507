#pragma once

#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

/// `qxSetCommands -mset MESSAGE`: the one way by which the toolkit's windows talk to its compiled
/// tools. A message that nothing answers to by name does nothing; one whose tool is missing fails
/// and says so.
class setCommands : public MPxCommand {
 public:
  MStatus doIt(const MArgList& arguments) override;

  static void* creator();
  static MSyntax newSyntax();
};
