#include "brushes/moveRotateScaleUVBrushContextCmd.h"

#include "brushes/moveRotateScaleUVBrushContext.h"

void* moveRotateScaleUVBrushContextCmd::creator() {
  return new moveRotateScaleUVBrushContextCmd;
}

brushContext* moveRotateScaleUVBrushContextCmd::makeBrush() {
  return new moveRotateScaleUVBrushContext;
}
