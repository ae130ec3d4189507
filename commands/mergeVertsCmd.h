#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSyntax.h>

#include "shared/mesh/storedPlaces.h"

/// `qxMergeVerts`: moves the selected vertices of one mesh onto a target vertex; with the mirror
/// option, those on the other side of the mirror plane onto the target's counterpart. It welds
/// nothing: the vertex count stays.
class mergeVertsCmd : public MPxCommand {
 public:
  mergeVertsCmd();
  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus gatherAtTarget(MPointArray& points);

  MDagPath meshPath;
  MIntArray vertexIds;       ///< in the order of the selection
  MPointArray oldPositions;  ///< world space, one a vertex of `vertexIds`
  storedPlaces oldPlaces;
  int axis;  ///< 0 x, 1 y, 2 z
  bool mirror;
  int componentId;  ///< the target vertex
  int mirrorId;     ///< its counterpart
};
