#pragma once

#include <maya/MPxToolCommand.h>
#include <maya/MSelectionList.h>

#include "shared/selection/componentPick.h"

/// One step of undo of the UV select tool: the active selection and the last pick as they were
/// before and are after. The tool has already made the change when it finalizes the command.
class uvSelectContextToolCmd : public MPxToolCommand {
 public:
  /// What a step goes from and to.
  struct state {
    MSelectionList selection;
    pickedComponent lastPick;
  };

  uvSelectContextToolCmd();
  ~uvSelectContextToolCmd() override;
  static void* creator();

  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }
  MStatus finalize() override;

  void setStates(const state& before, const state& after);

 private:
  static MStatus show(const state& wanted);

  state stateBefore, stateAfter;
};
