#pragma once

#include <maya/MSyntax.h>

#include "commands/reshapeCmd.h"

/// `qxSnapVertsToAxis`: puts the selected vertices of one mesh on the toolkit's mirror plane: their
/// world coordinate on the mirror axis becomes 0.
class snapVertsToAxisCmd : public reshapeCmd {
 public:
  snapVertsToAxisCmd();
  MStatus doIt(const MArgList& arguments) override;
  /// Clears the coordinate again; the other two stay as they are then.
  MStatus redoIt() override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  MStatus plan(const MPointArray& points, MPointArray& positions) override;

  int axis;  ///< 0 x, 1 y, 2 z
};
