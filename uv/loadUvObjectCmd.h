#pragma once

#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <vector>

/// `qxLoadUvObjectForMarking`: gives the selected meshes the attributes that hold seams, anchors
/// and selections, and a locator that draws them; or takes them away again.
class loadUvObjectCmd : public MPxCommand {
 public:
  loadUvObjectCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus load(const MDagPath& mesh);
  MStatus unload(const MDagPath& mesh);
  void selectLoaded() const;

  bool isLoad = true;
  MSelectionList selectionBefore;
  std::vector<MDagPath> meshes;
  MDagModifier change;
};
