#include "uv/uvTweakPlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "shared/numeric/pointIndex.h"

namespace {

constexpr double kRadians = 3.14159265358979323846 / 180.0;

/// UVs joined by polygons, found again by the lowest of those joined.
class joinedUvs {
 public:
  explicit joinedUvs(unsigned int count) : parent(count) {
    std::iota(parent.begin(), parent.end(), 0U);
  }
  unsigned int find(unsigned int uv) {
    while (parent[uv] != uv) uv = parent[uv] = parent[parent[uv]];
    return uv;
  }
  void join(unsigned int a, unsigned int b) {
    a = find(a);
    b = find(b);
    parent[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<unsigned int> parent;
};

/// Flags of the UVs in a shell that one of the chosen lies in.
std::vector<char> inChosenShells(const uvTweakInput& input, const std::vector<char>& isChosen) {
  const unsigned int count = input.u.length();
  joinedUvs shells(count);
  unsigned int first = 0;
  for (unsigned int face = 0; face < input.counts.length(); ++face) {
    const auto corners = static_cast<unsigned int>(input.counts[face]);
    for (unsigned int k = 1; k < corners; ++k)
      shells.join(static_cast<unsigned int>(input.ids[first]),
                  static_cast<unsigned int>(input.ids[first + k]));
    first += corners;
  }
  std::vector<char> isWanted(count, 0), isIn(count, 0);
  for (unsigned int uv = 0; uv < count; ++uv)
    if (isChosen[uv]) isWanted[shells.find(uv)] = 1;
  for (unsigned int uv = 0; uv < count; ++uv) isIn[uv] = isWanted[shells.find(uv)];
  return isIn;
}

/// How far each UV goes along, 0 to 1.
std::vector<double> weightsOf(const uvTweakInput& input, const uvTweakOptions& options,
                              const std::vector<char>& isChosen) {
  std::vector<double> weights(isChosen.begin(), isChosen.end());
  if (!(options.falloff > 0.0)) return weights;
  MPointArray chosen;
  for (unsigned int i = 0; i < input.chosen.length(); ++i) {
    const auto uv = static_cast<unsigned int>(input.chosen[i]);
    chosen.append(MPoint(input.u[uv], input.v[uv], 0.0));
  }
  const pointIndex nearChosen(chosen, 0, chosen.length());
  const std::vector<char> isNear = inChosenShells(input, isChosen);
  for (unsigned int uv = 0; uv < input.u.length(); ++uv) {
    if (!isNear[uv] || isChosen[uv]) continue;
    double distance = 0.0;
    const MPoint place(input.u[uv], input.v[uv], 0.0);
    if (nearChosen.nearest(place, options.falloff, &distance) < 0) continue;
    const double nearness = 1.0 - distance / options.falloff;
    weights[uv] = options.isLinear ? nearness : nearness * nearness * (3.0 - 2.0 * nearness);
  }
  return weights;
}

struct place {
  double u = 0.0, v = 0.0;
};

place middleOf(const uvTweakInput& input) {
  double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
  for (unsigned int i = 0; i < input.chosen.length(); ++i) {
    const auto uv = static_cast<unsigned int>(input.chosen[i]);
    if (!input.isPinned.empty() && input.isPinned[uv]) continue;
    const double at[] = {input.u[uv], input.v[uv]};
    for (int axis = 0; axis < 2; ++axis) {
      low[axis] = std::min(low[axis], at[axis]);
      high[axis] = std::max(high[axis], at[axis]);
    }
  }
  if (!(low[0] <= high[0])) return {};
  return {(low[0] + high[0]) / 2.0, (low[1] + high[1]) / 2.0};
}

/// The same change done in part: a share of the way, the turn and the scaling, so that what follows
/// bends instead of shrinking.
place changed(const place& from, const place& pivot, const uvTweakOptions& options, double share) {
  const double angle = options.angleDegrees * kRadians * share;
  const double u = (from.u - pivot.u) * (1.0 + (options.scaleU - 1.0) * share);
  const double v = (from.v - pivot.v) * (1.0 + (options.scaleV - 1.0) * share);
  const double turnedU = u * std::cos(angle) - v * std::sin(angle);
  const double turnedV = u * std::sin(angle) + v * std::cos(angle);
  return {pivot.u + turnedU + options.moveU * share, pivot.v + turnedV + options.moveV * share};
}

}  // namespace

uvTweakResult planUvTweak(const uvTweakInput& input, const uvTweakOptions& options) {
  std::vector<char> isChosen(input.u.length(), 0);
  for (unsigned int i = 0; i < input.chosen.length(); ++i)
    isChosen[static_cast<std::size_t>(input.chosen[i])] = 1;
  const std::vector<double> weights = weightsOf(input, options, isChosen);
  const place pivot = options.hasPivot ? place{options.pivotU, options.pivotV} : middleOf(input);
  uvTweakResult result;
  for (unsigned int uv = 0; uv < input.u.length(); ++uv) {
    const bool isPinned = !input.isPinned.empty() && input.isPinned[uv];
    if (isPinned || weights[uv] == 0.0) continue;
    const place to = changed({input.u[uv], input.v[uv]}, pivot, options, weights[uv]);
    result.ids.append(static_cast<int>(uv));
    result.u.append(static_cast<float>(to.u));
    result.v.append(static_cast<float>(to.v));
  }
  return result;
}
