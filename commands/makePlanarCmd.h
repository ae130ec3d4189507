#pragma once

#include <maya/MSyntax.h>
#include <maya/MVectorArray.h>

#include "commands/reshapeCmd.h"
#include "shared/selection/componentGather.h"

/// `qxMakePlanarCmd`: flattens the selected faces of one mesh onto a plane through their vertices'
/// mean; with the toolkit's mirror on and a symmetric selection, each side onto its own.
class makePlanarCmd : public reshapeCmd {
 public:
  makePlanarCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus gather();
  MStatus plan(const MPointArray& points, MPointArray& positions) override;
  void sortNormals(const MPointArray& points);

  selectedPolygons faces;        ///< until they are flattened
  MPointArray planarPositions;   ///< world space, the result
  MVectorArray negativeNormals;  ///< world space, of the faces on the negative side, or of all
                                 ///< without a mirror
  MVectorArray positiveNormals;
  int mirrorAxis;           ///< 0 x, 1 y, 2 z, 3 none
  int mirrorInObjectSpace;  ///< 0 object space, 1 world space
};
