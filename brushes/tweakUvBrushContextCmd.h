#pragma once

#include "brushes/brushContextCmd.h"

/// Makes tweak brushes for UVs.
class tweakUvBrushContextCmd : public brushContextCmd {
 public:
  static void* creator();

 protected:
  brushContext* makeBrush() override;
};
