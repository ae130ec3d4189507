#pragma once

#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "quaddraw/addPolyEdit.h"

/// `qxAddPolyCmd`: the command in front of `qxAddPolyNode`. It checks what is selected and always
/// refuses: polygons are put in by tools, which fill `edit` and call `redoIt`.
class addPolyCmd : public MPxCommand {
 public:
  addPolyCmd() = default;
  explicit addPolyCmd(const addPolyEdit& wanted) : edit(wanted) {}
  ~addPolyCmd() override;
  MStatus doIt(const MArgList& arguments) override;
  MStatus undoIt() override;
  MStatus redoIt() override;
  bool isUndoable() const override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  addPolyEdit edit;
};
