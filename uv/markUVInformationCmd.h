#pragma once

#include <maya/MIntArray.h>
#include <maya/MObjectHandle.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

#include <vector>

#include "uv/markAttributes.h"

/// `qxMarkUVInformation`: makes the selected edges seams, or the selected vertices anchors, of the
/// meshes that they belong to, or takes them out again. One operation a call, the first of its
/// flags that is true. docs/commands/mark.md.
class markUVInformationCmd : public MPxCommand {
 public:
  markUVInformationCmd() = default;
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  enum operation { kNone, kMarkEdge, kUnmarkEdge, kMarkVert, kUnmarkVert };
  /// What happens to one list of one shape.
  struct listChange {
    MObjectHandle shape;
    MIntArray before, after;
  };

  MStatus parse(const MArgList& arguments);
  bool isOfEdges() const { return wanted == kMarkEdge || wanted == kUnmarkEdge; }
  const markAttributes::name& list() const;
  const char* missingText() const;
  void plan();
  MStatus write(bool isUndo) const;
  void restoreSelection() const;

  operation wanted = kNone;
  MSelectionList selectionBefore;
  std::vector<listChange> changes;
};
