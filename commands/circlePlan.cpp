#include "commands/circlePlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "shared/planeFit.h"

namespace {

constexpr double kTwoPi = 6.283185307179586476925;

struct placedPoint {
  double angle;
  unsigned int entry;
};

/// In-plane axes: `up` points at the farthest point, `across` is a quarter turn from it about the normal.
struct circleFrame {
  MVector across, up;
};

/// False when the reference direction stands on the plane.
bool makeFrame(const MVector& normal, const MVector& reference, circleFrame& frame) {
  MVector n = normal;
  const double length = n.length();
  if (!(length > 0.0)) return false;
  n /= length;
  frame.across = n ^ reference;
  if (frame.across.length() <= 1e-9 * reference.length()) return false;
  frame.across.normalize();
  frame.up = frame.across ^ n;
  frame.up.normalize();
  return true;
}

}  // namespace

circleFault circleRun(MPointArray& positions, unsigned int start, unsigned int count, const MVector& normal) {
  if (count < 3) return circleFault::tooFewPoints;
  MVector fitted;
  if (!bestFitNormal(positions, start, count, fitted)) return circleFault::pointsOnOneLine;

  const MPoint centre = meanPoint(positions, start, count);
  const MPoint farthest = farthestFrom(centre, positions, start, count);
  const MVector reference = farthest - centre;
  const double radius = reference.length();
  circleFrame frame;
  if (!makeFrame(normal, reference, frame) && !makeFrame(fitted, reference, frame))
    return circleFault::pointsOnOneLine;

  std::vector<placedPoint> order(count);
  bool hasFirst = false;
  for (unsigned int i = 0; i < count; ++i) {
    const MVector offset = positions[start + i] - centre;
    double angle = std::atan2(offset * frame.across, offset * frame.up);
    if (angle < 0.0) angle += kTwoPi;
    if (!hasFirst && positions[start + i] == farthest) {
      angle = -1.0;  // the reference itself comes first, whatever its angle rounds to
      hasFirst = true;
    }
    order[i] = {angle, i};
  }
  std::sort(order.begin(), order.end(), [](const placedPoint& a, const placedPoint& b) {
    return a.angle != b.angle ? a.angle < b.angle : a.entry < b.entry;
  });

  const double step = kTwoPi / static_cast<double>(count);
  for (unsigned int k = 0; k < count; ++k) {
    const double angle = step * static_cast<double>(k);
    const MVector direction = frame.up * std::cos(angle) + frame.across * std::sin(angle);
    positions[start + order[k].entry] = centre + direction * radius;
  }
  return circleFault::none;
}
