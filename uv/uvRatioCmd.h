#pragma once

#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <vector>

#include "uv/meshUvEdit.h"

/// `uvRatio`: gives the UV shells of the selected meshes, or those with selected UVs, one relation
/// of surface length to UV length, by a node in each mesh's history.
class uvRatioCmd : public MPxCommand {
 public:
  uvRatioCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MSelectionList selectionBefore;
  std::vector<meshUvEdit> edits;
};
