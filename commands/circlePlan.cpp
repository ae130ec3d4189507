#include "commands/circlePlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "shared/numeric/planeFit.h"

namespace {

constexpr double kTwoPi = 6.283185307179586476925;
constexpr double kOnLine = 1e-6;

/// A point of the run and its angle in steps of a full turn's 2^44th part, counted from 1: finer
/// than angles can be told.
struct placedPoint {
  std::uint64_t turn;
  unsigned int entry;
  bool operator<(const placedPoint& other) const {
    return turn != other.turn ? turn < other.turn : entry < other.entry;
  }
};
constexpr int kTurnBits = 44;

/// Grows with the angle of a direction over a full turn, at a fraction of an arc tangent's cost;
/// the first step for no direction.
std::uint64_t turnOf(double x, double y) {
  constexpr double kSteps =
      static_cast<double>(std::uint64_t{1} << (kTurnBits - 2));  // a quarter turn
  const double size = std::fabs(x) + std::fabs(y);
  if (size == 0.0) return 1;
  const double slope = y / size;
  const double quarters = x < 0.0 ? 2.0 - slope : (y < 0.0 ? 4.0 + slope : slope);
  return 1 + static_cast<std::uint64_t>(quarters * kSteps);
}

/// Sorts by turn, points of one turn by their place. Linear for large runs, however the angles are
/// spread: by a few bits of the turn at a time, the lowest first.
void sortByTurn(std::vector<placedPoint>& points) {
  constexpr std::size_t kLarge = 4096;
  constexpr int kDigitBits = 12;
  constexpr std::uint64_t kDigits = std::uint64_t{1} << kDigitBits;
  if (points.size() < kLarge) {
    std::sort(points.begin(), points.end());
    return;
  }
  std::vector<placedPoint> sorted(points.size());
  std::vector<unsigned int> starts(kDigits);
  for (int shift = 0; shift <= kTurnBits; shift += kDigitBits) {
    std::fill(starts.begin(), starts.end(), 0u);
    for (const placedPoint& point : points) ++starts[(point.turn >> shift) & (kDigits - 1)];
    unsigned int total = 0;
    for (unsigned int& start : starts) {
      const unsigned int count = start;
      start = total;
      total += count;
    }
    for (const placedPoint& point : points)
      sorted[starts[(point.turn >> shift) & (kDigits - 1)]++] = point;
    points.swap(sorted);
  }
}

/// In-plane axes: `up` points at the farthest point, `across` is a quarter turn from it about the
/// normal.
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
  if (!(frame.across.length() > 1e-9 * reference.length())) return false;
  frame.across.normalize();
  frame.up = frame.across ^ n;
  frame.up.normalize();
  return true;
}

/// Puts the ordered points at equal steps on the circle. Directions are turned on from one to the
/// next, and taken anew every few steps before rounding adds up.
void placeEvenly(const std::vector<placedPoint>& order, const MPoint& centre,
                 const circleFrame& frame, double radius, MPointArray& positions,
                 unsigned int start) {
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

circleFault circleRun(MPointArray& positions, unsigned int start, unsigned int count,
                      const MVector& normal) {
  if (count < 3) return circleFault::tooFewPoints;
  const MPoint centre = meanPoint(positions, start, count);
  const MPoint farthest = farthestFrom(centre, positions, start, count);
  const MVector reference = farthest - centre;
  const double radius = reference.length();
  circleFrame frame;
  MVector fitted;
  if (!makeFrame(normal, reference, frame) &&
      !(bestFitNormal(positions, start, count, fitted) && makeFrame(fitted, reference, frame)))
    return circleFault::noPlane;

  std::vector<placedPoint> order(count);
  bool hasFirst = false;
  for (unsigned int i = 0; i < count; ++i) {
    const MVector offset = positions[start + i] - centre;
    // Points on the line through the farthest one lie on it only as far as single precision tells.
    const double along = offset * frame.up, across = offset * frame.across;
    order[i] = {turnOf(along, std::fabs(across) > kOnLine * radius ? across : 0.0), i};
    if (!hasFirst && positions[start + i] == farthest) {
      order[i].turn = 0;  // the reference itself comes first, whatever its angle rounds to
      hasFirst = true;
    }
  }
  sortByTurn(order);
  placeEvenly(order, centre, frame, radius, positions, start);
  return circleFault::none;
}
