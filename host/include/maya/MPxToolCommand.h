#pragma once

#include <maya/MArgList.h>
#include <maya/MPxCommand.h>
#include <maya/MTypes.h>

/// Base of the commands that tools record their work with.
class MPxToolCommand : public MPxCommand {
 public:
  MPxToolCommand();
  ~MPxToolCommand() override;

  MStatus doIt(const MArgList& args) override;
  virtual MStatus cancel();
  /// Builds the command's line and hands it to `doFinalize`.
  virtual MStatus finalize();

 protected:
  /// Puts the command on the undo queue and into the echo, without running it.
  virtual MStatus doFinalize(MArgList& command);
  MStatus resizeToolCommand(unsigned int size);
};
