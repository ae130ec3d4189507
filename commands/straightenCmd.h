#pragma once

#include <maya/MSyntax.h>

#include "commands/reshapeCmd.h"

/// `qxStraightenCmd`: lines up the selected vertices of one mesh on the line through their two
/// extreme points.
class straightenCmd : public reshapeCmd {
 public:
  straightenCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus gather();
  MStatus plan(const MPointArray& points, MPointArray& positions) override;

  MPointArray straightPositions;  ///< world space, the result
  int keepAxes;                   ///< a keepAxesCode
  bool average;             ///< accepted for scripts that pass it; the result does not depend on it
  int mirrorAxis;           ///< 0 x, 1 y, 2 z, 6 no split
  int mirrorInObjectSpace;  ///< 0 object space, 1 world space
};
