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
  double turn;
  unsigned int entry;
  bool operator<(const placedPoint& other) const {
    return turn != other.turn ? turn < other.turn : entry < other.entry;
  }
};

/// Grows with the angle of a direction from 0 up to 4 for a full turn, at a fraction of an arc tangent's cost; 0 for no
/// direction.
double turnOf(double x, double y) {
  const double size = std::fabs(x) + std::fabs(y);
  if (size == 0.0) return 0.0;
  const double slope = y / size;
  return x < 0.0 ? 2.0 - slope : (y < 0.0 ? 4.0 + slope : slope);
}

/// Sorts by turn. Large runs are spread over as many sectors as there are points first, which leaves little to compare.
void sortByTurn(std::vector<placedPoint>& points) {
  constexpr std::size_t kLarge = 4096;
  const std::size_t count = points.size();
  if (count < kLarge) {
    std::sort(points.begin(), points.end());
    return;
  }
  const auto sectorOf = [count](const placedPoint& point) {
    return std::min(count - 1, static_cast<std::size_t>(std::max(0.0, point.turn) * 0.25 * static_cast<double>(count)));
  };
  std::vector<unsigned int> ends(count, 0);
  for (const placedPoint& point : points) ++ends[sectorOf(point)];
  unsigned int total = 0;
  for (unsigned int& end : ends) end = total += end;
  std::vector<placedPoint> sorted(count);
  for (std::size_t i = count; i-- > 0;) sorted[--ends[sectorOf(points[i])]] = points[i];  // now where sectors start
  for (std::size_t sector = 0; sector < count; ++sector) {
    const std::size_t end = sector + 1 < count ? ends[sector + 1] : count;
    if (end - ends[sector] > 1)
      std::sort(sorted.begin() + static_cast<std::ptrdiff_t>(ends[sector]),
                sorted.begin() + static_cast<std::ptrdiff_t>(end));
  }
  points.swap(sorted);
}

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

/// Puts the ordered points at equal steps on the circle. Directions are turned on from one to the next, and taken anew every
/// few steps before rounding adds up.
void placeEvenly(const std::vector<placedPoint>& order, const MPoint& centre, const circleFrame& frame, double radius,
                 MPointArray& positions, unsigned int start) {
  constexpr std::size_t kFresh = 64;
  const double step = kTwoPi / static_cast<double>(order.size());
  const double stepCosine = std::cos(step), stepSine = std::sin(step);
  const MVector up = frame.up * radius, across = frame.across * radius;
  double cosine = 1.0, sine = 0.0;
  for (std::size_t k = 0; k < order.size(); ++k) {
    if (k % kFresh == 0) {
      cosine = std::cos(step * static_cast<double>(k));
      sine = std::sin(step * static_cast<double>(k));
    }
    positions[start + order[k].entry] = centre + (up * cosine + across * sine);
    const double turned = cosine * stepCosine - sine * stepSine;
    sine = sine * stepCosine + cosine * stepSine;
    cosine = turned;
  }
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
    order[i] = {turnOf(offset * frame.up, offset * frame.across), i};
    if (!hasFirst && positions[start + i] == farthest) {
      order[i].turn = -1.0;  // the reference itself comes first, whatever its angle rounds to
      hasFirst = true;
    }
  }
  sortByTurn(order);
  placeEvenly(order, centre, frame, radius, positions, start);
  return circleFault::none;
}
