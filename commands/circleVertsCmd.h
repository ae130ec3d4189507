#pragma once

#include <maya/MSyntax.h>

#include "commands/reshapeCmd.h"

class MVector;

/// `qxCircleVertsCmd`: spaces the selected vertices of one mesh evenly on a circle; with the
/// toolkit's mirror on and a symmetric selection, one half on a circle and the other as its mirror
/// image.
class circleVertsCmd : public reshapeCmd {
 public:
  circleVertsCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus gather();
  MStatus plan(const MPointArray& points, MPointArray& positions) override;
  MVector meanNormal(unsigned int count) const;
  void mirrorSecondHalf(MPointArray& positions) const;

  MPointArray circlePositions;  ///< world space, the result
  int mirrorAxis;               ///< 0 x, 1 y, 2 z, 3 none
  int mirrorInObjectSpace;      ///< 0 object space, 1 world space
};
