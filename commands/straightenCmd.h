#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "shared/mesh/storedPlaces.h"

/// `qxStraightenCmd`: lines up the selected vertices of one mesh on the line through their two
/// extreme points.
class straightenCmd : public MPxCommand {
 public:
  straightenCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus gather();

  MDagPath dagPath;
  MIntArray vertexIds;
  MPointArray savedPositions;  ///< world space, one a vertex of `vertexIds`, before the command
  storedPlaces savedPlaces;
  MPointArray straightPositions;  ///< world space, the result
  int keepAxes;                   ///< a keepAxesCode
  bool average;             ///< accepted for scripts that pass it; the result does not depend on it
  int mirrorAxis;           ///< 0 x, 1 y, 2 z, 6 no split
  int mirrorInObjectSpace;  ///< 0 object space, 1 world space
};
