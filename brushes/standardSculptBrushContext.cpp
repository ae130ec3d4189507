#include "brushes/standardSculptBrushContext.h"

#include <maya/MGlobal.h>

#include <cmath>

#include "brushes/sculptPlan.h"

standardSculptBrushContext::standardSculptBrushContext()
    : pointBrush("standardSculptBrushContext", "Sculpt Brush",
                 "Drag to sculpt. Shift smooths, Ctrl inverts; B and drag: radius, M and drag: "
                 "strength.") {}

const char* const* standardSculptBrushContext::modeNames() const {
  static const char* const names[] = {"push", "relax", "flatten", "pinch", "grab", nullptr};
  return names;
}

void standardSculptBrushContext::settingsChanged() {
  if (settings.alpha == alpha.name()) return;
  std::string problem;
  if (!alpha.load(settings.alpha, problem))
    MGlobal::displayWarning((problem + "; the brush goes on without it.").c_str());
}

bool standardSculptBrushContext::needsDirection() const {
  return !alpha.isEmpty() && settings.stampTurn == brushSettings::kStampAlongStroke && !isHolding();
}

MVector standardSculptBrushContext::onSurface(double angle, const MVector& normal) const {
  MVector flat = sight().right() * std::cos(angle) + sight().up() * std::sin(angle);
  flat -= normal * (flat * normal);
  if (flat.length() < 1e-6) flat = sight().backward() ^ normal;
  return flat.length() > 0.0 ? flat.normal() : MVector();
}

MVector standardSculptBrushContext::stampAxis(const brushDab& dab) const {
  const MVector& normal = dab.hit.normal;
  // The image's upper side goes ahead with the stroke, or where the pen leans to.
  double up = M_PI / 2.0;
  const penState& pen = dab.place.pen;
  if (settings.stampTurn == brushSettings::kStampAlongStroke)
    up = dab.turn;
  else if (settings.stampTurn == brushSettings::kStampAlongPen &&
           (pen.tiltX != 0.0 || pen.tiltY != 0.0))
    up = std::atan2(pen.tiltY, pen.tiltX);
  up += settings.stampAngle * M_PI / 180.0;
  return onSurface(up, normal) ^ normal;
}

void standardSculptBrushContext::plan(const brushDab& dab, const dabRegion& region,
                                      dabMoves& moves) {
  if (alpha.isEmpty() || dab.smooth) return sculpt(dab, region, moves);
  stamped = region;
  for (std::size_t i = 0; i < region.weights.size(); ++i)
    stamped.weights[i] *= alpha.value(region.stamp[2 * i], region.stamp[2 * i + 1]);
  sculpt(dab, stamped, moves);
}

void standardSculptBrushContext::sculpt(const brushDab& dab, const dabRegion& region,
                                        dabMoves& moves) {
  if (dab.smooth || settings.mode == kRelax) {
    const double amount = std::fabs(sculptPlan::amountOf(dab, sculptPlan::kRelaxRate));
    sculptPlan::relax(surface(), region, amount, settings.relaxIterations, slots, moves);
    return;
  }
  const MVector& outward = dab.hit.normal;
  switch (settings.mode) {
    case kFlatten:
      sculptPlan::flatten(surface(), region, outward,
                          sculptPlan::amountOf(dab, sculptPlan::kFlattenRate), moves);
      break;
    case kPinch:
      sculptPlan::pinch(surface(), region, dab.hit.point, outward,
                        dab.count > 0 ? onSurface(dab.turn, outward) : MVector(),
                        sculptPlan::amountOf(dab, sculptPlan::kPinchRate), moves);
      break;
    default: {
      const double height = sculptPlan::kPushRate * dab.strength * dab.stepShare * dab.radius;
      sculptPlan::push(surface(), region, outward, dab.invert ? -height : height, moves);
    }
  }
}
