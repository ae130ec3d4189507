#pragma once

#include "brushes/brushContextCmd.h"

/// Makes brushes that move, turn and scale UVs.
class moveRotateScaleUVBrushContextCmd : public brushContextCmd {
 public:
  static void* creator();

 protected:
  brushContext* makeBrush() override;
};
