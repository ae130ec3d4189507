#pragma once

#include "brushes/uvBrushContext.h"

/// Moves, smears and relaxes UVs under the brush.
class tweakUvBrushContext : public uvBrushContext {
 public:
  tweakUvBrushContext();
  const char* const* modeNames() const override;

 protected:
  actions actionOf(int mode) const override;
};
