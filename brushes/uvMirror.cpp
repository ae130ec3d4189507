#include "brushes/uvMirror.h"

#include <maya/MPointArray.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

uvMirror::uvMirror(const uvLayout& layout, int axisIn, double lineIn)
    : places(layout.place(0), layout.place(0) + 2 * static_cast<std::size_t>(layout.count())),
      axis(static_cast<std::size_t>(axisIn)),
      line(lineIn) {
  MPointArray points(static_cast<unsigned int>(layout.count()));
  double low[2] = {HUGE_VAL, HUGE_VAL}, high[2] = {-HUGE_VAL, -HUGE_VAL};
  for (int uv = 0; uv < layout.count(); ++uv) {
    const float* const at = layout.place(uv);
    points[static_cast<unsigned int>(uv)] = MPoint(at[0], at[1], 0.0);
    for (int k = 0; k < 2; ++k) {
      low[k] = std::min(low[k], static_cast<double>(at[k]));
      high[k] = std::max(high[k], static_cast<double>(at[k]));
    }
  }
  reach = 1e-3 * std::hypot(high[0] - low[0], high[1] - low[1]);
  index = std::make_unique<pointIndex>(points, 0, points.length());
}

void uvMirror::reflect(float (&place)[2]) const {
  place[axis] = static_cast<float>(2.0 * line - place[axis]);
}

int uvMirror::counterpart(int uv) const {
  const float* const place = places.data() + 2 * static_cast<std::size_t>(uv);
  float image[2] = {place[0], place[1]};
  if (std::fabs(image[axis] - line) <= reach) return uv;
  reflect(image);
  return index->nearest(MPoint(image[0], image[1], 0.0), reach);
}

void addCounterparts(const uvMirror& mirror, const std::vector<double>& weights,
                     std::vector<int>& uvs, std::vector<float>& targets) {
  const std::size_t count = uvs.size();
  std::unordered_map<int, std::size_t> listed;
  for (std::size_t i = 0; i < count; ++i) listed.emplace(uvs[i], i);
  for (std::size_t i = 0; i < count; ++i) {
    const int other = mirror.counterpart(uvs[i]);
    if (other < 0) continue;
    float image[2] = {targets[2 * i], targets[2 * i + 1]};
    mirror.reflect(image);
    if (other == uvs[i]) {
      for (std::size_t k = 0; k < 2; ++k)
        targets[2 * i + k] = (targets[2 * i + k] + image[k]) / 2.0F;
      continue;
    }
    const auto [known, isNew] = listed.emplace(other, uvs.size());
    if (isNew) {
      uvs.push_back(other);
      targets.insert(targets.end(), {image[0], image[1]});
      continue;
    }
    const std::size_t at = known->second;
    if (at >= count) continue;  // somebody else's counterpart, which comes first
    const bool isOlder = i < at ? weights[i] >= weights[at] : weights[i] > weights[at];
    if (!isOlder) continue;
    targets[2 * at] = image[0];
    targets[2 * at + 1] = image[1];
  }
}
