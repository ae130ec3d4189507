#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "shared/mesh/storedPlaces.h"

class MVector;
struct mirrorOptions;

/// `qxCircleVertsCmd`: spaces the selected vertices of one mesh evenly on a circle; with the
/// toolkit's mirror on and a symmetric selection, one half on a circle and the other as its mirror
/// image.
class circleVertsCmd : public MPxCommand {
 public:
  circleVertsCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus gather();
  MVector meanNormal(unsigned int count) const;
  void mirrorSecondHalf(const mirrorOptions& mirror);

  MDagPath dagPath;
  MIntArray vertexIds;
  MPointArray savedPositions;  ///< world space, one a vertex of `vertexIds`
  storedPlaces savedPlaces;
  MPointArray circlePositions;  ///< world space, the result
  int mirrorAxis;               ///< 0 x, 1 y, 2 z, 3 none
  int mirrorInObjectSpace;      ///< 0 object space, 1 world space
};
