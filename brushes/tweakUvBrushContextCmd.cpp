#include "brushes/tweakUvBrushContextCmd.h"

#include "brushes/tweakUvBrushContext.h"

void* tweakUvBrushContextCmd::creator() {
  return new tweakUvBrushContextCmd;
}

brushContext* tweakUvBrushContextCmd::makeBrush() {
  return new tweakUvBrushContext;
}
