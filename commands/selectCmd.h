#pragma once

#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

class MDagPath;
class MIntArray;

/// `qxSelectCmd`: turns the selection into edges, the border of the selected faces or the hard
/// edges of the selected objects, and goes to the selection tool and edge mode, so that work goes
/// on with them.
class SelectCmd : public MPxCommand {
 public:
  SelectCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus addBorderEdges();
  MStatus addHardEdges();
  void addEdges(const MDagPath& mesh, const MObject& edges);

  bool borderEdge;
  bool hardEdge;
  MSelectionList priorSelection;
  MSelectionList edgeSelection;  ///< one entry an object
  MString lastPathName;          ///< of the last object visited
};
