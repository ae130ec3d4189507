#include "host/math/placement.h"

#include <algorithm>
#include <cmath>

namespace host::math {

namespace {

void turn(double& u, double& v, double angle) {
  if (angle == 0) return;
  const double c = std::cos(angle), s = std::sin(angle);
  const double x = u - 0.5, y = v - 0.5;
  u = 0.5 + x * c - y * s;
  v = 0.5 + x * s + y * c;
}

/// From the surface into the frame along one axis; false outside of what is covered.
bool intoFrame(double& at, double coverage, bool wraps) {
  if (wraps) at -= std::floor(at);
  if (coverage == 0) return false;
  at /= coverage;
  return at >= 0 && at <= 1;
}

}  // namespace

TextureUv placed(const Placement& p, double u, double v) {
  TextureUv result{u, v, true};
  // A frame that is turned by an angle shows its texture turned by it, so the surface turns back.
  turn(result.u, result.v, -p.rotateFrame);
  result.u -= p.translateFrameU;
  result.v -= p.translateFrameV;
  const bool fitsU = p.coverageU == 1 && p.wrapU, fitsV = p.coverageV == 1 && p.wrapV;
  if (!fitsU) result.isInside = intoFrame(result.u, p.coverageU, p.wrapU);
  if (!fitsV) result.isInside = intoFrame(result.v, p.coverageV, p.wrapV) && result.isInside;
  result.u = result.u * p.repeatU + p.offsetU;
  result.v = result.v * p.repeatV + p.offsetV;
  const double column = std::floor(result.u), row = std::floor(result.v);
  const auto isOdd = [](double whole) { return std::fmod(std::abs(whole), 2.0) == 1; };
  if (p.mirrorU && isOdd(column)) result.u = 2 * column + 1 - result.u;
  if (p.mirrorV && isOdd(row)) result.v = 2 * row + 1 - result.v;
  if (p.stagger && isOdd(row)) result.u += 0.5;
  turn(result.u, result.v, -p.rotateUv);
  return result;
}

}  // namespace host::math
