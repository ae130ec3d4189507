#pragma once

#include "brushes/pointBrush.h"

/// The move brush: what lies under it goes along with the pointer, or is nudged on as it passes.
class baseBrushContext final : public pointBrush {
 public:
  enum modes { kMove = 0, kNudge = 1 };
  baseBrushContext();
  const char* const* modeNames() const override;

 protected:
  bool isHolding() const override { return settings.mode == kMove; }
  void plan(const brushDab& dab, const dabRegion& region, dabMoves& moves) override;

 private:
  vertexSlots slots;
};
