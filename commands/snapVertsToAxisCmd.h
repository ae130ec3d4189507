#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "shared/mesh/storedPlaces.h"

/// `qxSnapVertsToAxis`: puts the selected vertices of one mesh on the toolkit's mirror plane: their
/// world coordinate on the mirror axis becomes 0.
class snapVertsToAxisCmd : public MPxCommand {
 public:
  snapVertsToAxisCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  void clearAxis(MPointArray& points) const;

  MDagPath dagPath;
  MIntArray vertexIds;         ///< in the order of the selection
  MPointArray savedPositions;  ///< world space, one a vertex of `vertexIds`
  storedPlaces savedPlaces;
  int axis;  ///< 0 x, 1 y, 2 z
};
