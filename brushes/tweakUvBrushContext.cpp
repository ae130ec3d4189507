#include "brushes/tweakUvBrushContext.h"

tweakUvBrushContext::tweakUvBrushContext()
    : uvBrushContext("tweakUvBrushContext", "Tweak UV Brush",
                     "Drag: move UVs, on their UV object or on the mesh. Shift relaxes, Ctrl keeps "
                     "to u or v, B + drag the radius, M + drag the strength.") {}

const char* const* tweakUvBrushContext::modeNames() const {
  static const char* const names[] = {"move", "smear", "relax", nullptr};
  return names;
}

uvBrushContext::actions tweakUvBrushContext::actionOf(int mode) const {
  constexpr actions kActions[] = {kMove, kSmear, kRelax};
  return kActions[mode];
}
