#pragma once

#include <maya/MDagModifier.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <memory>

/// `qxESmoothCmd`: makes a smoothed copy of each selected mesh object with its hard edges kept
/// sharp, and hides the object behind it.
///
/// The copy is subdivided with its hard edges fully creased, then once more without creases, which
/// rounds the kept edges just enough to catch the light. Copies have no history. Undo deletes them
/// and shows the objects, those too that were hidden before; redo brings back the same copies, with
/// whatever later steps have made of them. An object that can't be smoothed ends the command and
/// stays as it was; those before it are smoothed, which undo takes back.
class turboSmoothCmd : public MPxCommand {
 public:
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus smoothAll();
  MStatus smoothObject(const MDagPath& source);
  MStatus smoothCopy(const MDagPath& copy) const;

  MDagPathArray sourcePaths;  ///< transforms that were smoothed, in the order of the selection
  MDagPathArray smoothPaths;  ///< their copies
  MSelectionList selection;   ///< what was selected, then what was hilited
  MSelectionList left;        ///< what the first run left selected
  int numDiv = 1;             ///< divisions before the last, uncreased one add one to this
  static turboSmoothCmd* handingOver;

  std::unique_ptr<MDagModifier> removal;  ///< brings back the copies that undo took away
};
