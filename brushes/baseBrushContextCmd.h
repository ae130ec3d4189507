#pragma once

#include "brushes/brushContextCmd.h"

/// Makes move brushes.
class baseBrushContextCmd : public brushContextCmd {
 public:
  static void* creator();

 protected:
  brushContext* makeBrush() override;
};

/// Makes sculpt brushes.
class standardBrushContextCmd : public brushContextCmd {
 public:
  static void* creator();

 protected:
  brushContext* makeBrush() override;
};
