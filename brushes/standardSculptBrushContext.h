#pragma once

#include "brushes/alphaImage.h"
#include "brushes/pointBrush.h"

/// The sculpting brush: pushes and pulls along the average normal of what it reaches, weighed by a
/// stamp, and relaxes, flattens, pinches and grabs as other modes.
class standardSculptBrushContext final : public pointBrush {
 public:
  enum modes { kPush = 0, kRelax = 1, kFlatten = 2, kPinch = 3, kGrab = 4 };
  standardSculptBrushContext();
  const char* const* modeNames() const override;
  void settingsChanged() override;

 protected:
  bool isHolding() const override { return settings.mode == kGrab; }
  bool needsDirection() const override;
  MVector stampAxis(const brushDab& dab) const override;
  void plan(const brushDab& dab, const dabRegion& region, dabMoves& moves) override;

 private:
  void sculpt(const brushDab& dab, const dabRegion& region, dabMoves& moves);
  /// A direction on screen, in radians, laid into a tangent plane; unit.
  MVector onSurface(double angle, const MVector& normal) const;

  alphaImage alpha;
  dabRegion stamped;  ///< a region with the stamp in its weights
  vertexSlots slots;
};
