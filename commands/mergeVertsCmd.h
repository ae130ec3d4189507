#pragma once

#include <maya/MSyntax.h>

#include "commands/reshapeCmd.h"

/// `qxMergeVerts`: moves the selected vertices of one mesh onto a target vertex; with the mirror
/// option, those on the other side of the mirror plane onto the target's counterpart. It welds
/// nothing: the vertex count stays.
class mergeVertsCmd : public reshapeCmd {
 public:
  mergeVertsCmd();
  MStatus doIt(const MArgList& arguments) override;
  /// Moves them again to where the targets are then.
  MStatus redoIt() override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus parseArguments(const MArgList& arguments);
  MStatus plan(const MPointArray& points, MPointArray& positions) override;

  int axis;  ///< 0 x, 1 y, 2 z
  bool mirror;
  bool mirrorWorldSpace;  ///< as the tool settings were when the command ran
  int componentId;        ///< the target vertex
  int mirrorId;           ///< its counterpart
};
