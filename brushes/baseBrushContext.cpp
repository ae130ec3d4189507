#include "brushes/baseBrushContext.h"

#include "brushes/sculptPlan.h"

baseBrushContext::baseBrushContext()
    : pointBrush("baseBrushContext", "Move Brush",
                 "Drag to move what is under the brush. Shift smooths, Ctrl moves the other way; B "
                 "and drag: radius, M and drag: strength.") {
  settings.strength = 1.0;
}

const char* const* baseBrushContext::modeNames() const {
  static const char* const names[] = {"move", "nudge", nullptr};
  return names;
}

void baseBrushContext::plan(const brushDab& dab, const dabRegion& region, dabMoves& moves) {
  if (dab.smooth) {
    sculptPlan::relax(surface(), region, sculptPlan::amountOf(dab, sculptPlan::kRelaxRate),
                      settings.relaxIterations, slots, moves);
    return;
  }
  const MVector way = dab.moved * (dab.invert ? -dab.strength : dab.strength);
  for (std::size_t i = 0; i < moves.size(); ++i) moves[i] = way * region.weights[i];
}
