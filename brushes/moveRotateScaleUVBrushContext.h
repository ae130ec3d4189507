#pragma once

#include "brushes/uvBrushContext.h"

/// Moves, turns, scales and relaxes UVs under the brush. Turning and scaling go about the place
/// where the button went down: to the right turns clockwise, half a degree a pixel, or enlarges, to
/// the double in 150 pixels.
class moveRotateScaleUVBrushContext : public uvBrushContext {
 public:
  moveRotateScaleUVBrushContext();
  const char* const* modeNames() const override;

 protected:
  actions actionOf(int mode) const override;
};
