#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>
#include <maya/MVectorArray.h>

#include "shared/mesh/storedPlaces.h"

struct mirrorOptions;
struct selectedPolygons;

/// `qxMakePlanarCmd`: flattens the selected faces of one mesh onto a plane through their vertices'
/// mean; with the toolkit's mirror on and a symmetric selection, each side onto its own.
class makePlanarCmd : public MPxCommand {
 public:
  makePlanarCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus gather(const mirrorOptions& mirror, MPointArray& points);
  void sortNormals(const selectedPolygons& faces, const MPointArray& points,
                   const mirrorOptions& mirror);
  bool flatten(bool isSplit);

  MDagPath dagPath;
  MIntArray vertexIds;
  MPointArray savedPositions;  ///< world space, one a vertex of `vertexIds`
  storedPlaces savedPlaces;
  MPointArray planarPositions;   ///< world space, the result
  MVectorArray negativeNormals;  ///< world space, of the faces on the negative side, or of all
                                 ///< without a mirror
  MVectorArray positiveNormals;
  int mirrorAxis;           ///< 0 x, 1 y, 2 z, 3 none
  int mirrorInObjectSpace;  ///< 0 object space, 1 world space
};
