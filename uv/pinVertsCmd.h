#pragma once

#include <maya/MDagModifier.h>
#include <maya/MIntArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

class MArgDatabase;
class MDagPath;

/// `qxPinVertsCmd`: pins and frees the selected vertices of UV objects, so that unfolding, tweaks
/// and brushes leave them where they are. A query tells which are pinned.
class pinVertsCmd : public MPxCommand {
 public:
  pinVertsCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return !isQuery; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  enum class operation { none, pin, unpin, clear };
  MStatus readOperation(const MArgDatabase& database);
  MStatus change(const MDagPath& mesh, const MIntArray& vertices);
  void listPins() const;

  bool isQuery = false;
  operation wanted = operation::none;
  MSelectionList selectionBefore;
  MDagModifier modifier;
};
