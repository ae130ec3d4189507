#include "brushes/moveRotateScaleUVBrushContext.h"

moveRotateScaleUVBrushContext::moveRotateScaleUVBrushContext()
    : uvBrushContext("moveRotateScaleUVBrushContext", "Move Rotate Scale UV Brush",
                     "Drag: move UVs, or turn and scale them to the right and left. Shift relaxes, "
                     "Ctrl turns the direction over, B + drag the radius, M + drag the strength.") {
}

const char* const* moveRotateScaleUVBrushContext::modeNames() const {
  static const char* const names[] = {"move", "rotate", "scale", "relax", nullptr};
  return names;
}

uvBrushContext::actions moveRotateScaleUVBrushContext::actionOf(int mode) const {
  constexpr actions kActions[] = {kMove, kRotate, kScale, kRelax};
  return kActions[mode];
}
