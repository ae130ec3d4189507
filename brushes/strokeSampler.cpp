#include "brushes/strokeSampler.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kFineStep = 1.0;  ///< pixels between places of the smoothed way

double distance(const penSample& a, const penSample& b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

penSample between(const penSample& a, const penSample& b, double share) {
  const auto mix = [share](double from, double to) { return from + share * (to - from); };
  penSample mixed;
  mixed.x = mix(a.x, b.x);
  mixed.y = mix(a.y, b.y);
  mixed.pen.pressure = mix(a.pen.pressure, b.pen.pressure);
  mixed.pen.tiltX = mix(a.pen.tiltX, b.pen.tiltX);
  mixed.pen.tiltY = mix(a.pen.tiltY, b.pen.tiltY);
  return mixed;
}

}  // namespace

void strokeSampler::begin(const penSample& first, double smoothing) {
  lag = kLongestLag * std::clamp(smoothing, 0.0, 1.0);
  raw = smoothed = first;
  way.assign(1, first);
  at = 0;
  walked = 0.0;
  isFirst = true;
}

void strokeSampler::moveTo(const penSample& to) {
  const double length = distance(raw, to);
  // A pen that is only pressed harder where it stands is heard at its next dab.
  const auto steps = static_cast<int>(std::max(1.0, std::ceil(length / kFineStep)));
  const double share = lag > 0.0 ? 1.0 - std::exp(-length / (steps * lag)) : 1.0;
  for (int i = 1; i <= steps; ++i) {
    smoothed = between(smoothed, between(raw, to, static_cast<double>(i) / steps), share);
    way.push_back(smoothed);
  }
  raw = to;
}

void strokeSampler::finish() {
  smoothed = raw;
  way.push_back(raw);
}

bool strokeSampler::next(double step, penSample& dab) {
  if (way.empty()) return false;
  if (isFirst) {
    isFirst = false;
    dab = way[at];
    return true;
  }
  const double wanted = std::max(step, 0.25);
  while (at + 1 < way.size()) {
    const double length = distance(way[at], way[at + 1]);
    if (walked + length >= wanted && length > 0.0) {
      way[at] = between(way[at], way[at + 1], std::clamp((wanted - walked) / length, 0.0, 1.0));
      walked = 0.0;
      dab = way[at];
      return true;
    }
    walked += length;
    ++at;
  }
  way.erase(way.begin(), way.begin() + static_cast<std::ptrdiff_t>(at));
  at = 0;
  return false;
}
