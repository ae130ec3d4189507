#include "brushes/uvGuard.h"

#include <algorithm>

#include "brushes/uvOrientation.h"

namespace {

constexpr int kMostHalvings = 6;

}  // namespace

uvGuard::uvGuard(uvLayout& layoutIn)
    : layout(layoutIn),
      stepOf(static_cast<std::size_t>(layoutIn.count()), -1),
      visited(static_cast<std::size_t>(layoutIn.faces().count()), 0) {}

const float* uvGuard::placeOf(int uv, bool before) const {
  const int at = stepOf[static_cast<std::size_t>(uv)];
  return before && at >= 0 ? steps[static_cast<std::size_t>(at)].from : layout.place(uv);
}

/// Of the triangle that a corner makes with its neighbours; from the number of corners on, of the
/// triangles of the fan.
int uvGuard::firmnessAt(int face, int corner, bool before) const {
  const int* const uvs = layout.faces().begin(face);
  const int size = layout.faces().size(face);
  const int sign = layout.shellSign(layout.shellOf(*uvs));
  int a = (corner + size - 1) % size, b = corner % size, c = (corner + 1) % size;
  if (corner >= size) {
    a = 0;
    b = corner - size + 1;
    c = b + 1;
  }
  return firmness(placeOf(uvs[a], before), placeOf(uvs[b], before), placeOf(uvs[c], before), sign);
}

bool uvGuard::isWorse(int face) const {
  const int size = layout.faces().size(face);
  if (size < 3) return false;
  const int tests = size == 3 ? 1 : size == 4 ? 4 : 2 * size - 2;
  for (int i = 0; i < tests; ++i) {
    const int now = firmnessAt(face, i, false);
    if (now < kFirm && now < firmnessAt(face, i, true)) return true;
  }
  return false;
}

std::vector<int> uvGuard::facesAround(const std::vector<int>& uvs) {
  ++round;
  std::vector<int> faces;
  const intLists& at = layout.facesAtUv();
  for (const int uv : uvs)
    for (const int* face = at.begin(uv); face != at.end(uv); ++face) {
      std::uint32_t& seen = visited[static_cast<std::size_t>(*face)];
      if (seen == round) continue;
      seen = round;
      faces.push_back(*face);
    }
  return faces;
}

void uvGuard::shorten(step& each) {
  ++each.halvings;
  if (each.halvings > kMostHalvings) {
    layout.setPlace(each.uv, each.from[0], each.from[1]);
    return;
  }
  const double share = 1.0 / (1 << each.halvings);
  const auto between = [&](int k) {
    const double from = each.from[k];
    return static_cast<float>(from + (each.to[k] - from) * share);
  };
  layout.setPlace(each.uv, between(0), between(1));
}

int uvGuard::move(const std::vector<int>& uvs, const std::vector<float>& targets) {
  steps.clear();
  for (std::size_t i = 0; i < uvs.size(); ++i) {
    const float* const from = layout.place(uvs[i]);
    stepOf[static_cast<std::size_t>(uvs[i])] = static_cast<int>(i);
    steps.push_back({uvs[i], {from[0], from[1]}, {targets[2 * i], targets[2 * i + 1]}, 0});
    layout.setPlace(uvs[i], targets[2 * i], targets[2 * i + 1]);
  }
  // Every round shortens the steps of what is worse; a step is shortened so often and no oftener,
  // and where nothing has moved nothing is worse.
  std::vector<int> changed = uvs;
  while (!changed.empty()) {
    std::vector<int> shortened;
    for (const int face : facesAround(changed)) {
      if (!isWorse(face)) continue;
      const intLists& faces = layout.faces();
      for (const int* uv = faces.begin(face); uv != faces.end(face); ++uv) {
        const int at = stepOf[static_cast<std::size_t>(*uv)];
        if (at >= 0 && steps[static_cast<std::size_t>(at)].halvings <= kMostHalvings)
          shortened.push_back(*uv);
      }
    }
    std::sort(shortened.begin(), shortened.end());
    shortened.erase(std::unique(shortened.begin(), shortened.end()), shortened.end());
    for (const int uv : shortened)
      shorten(steps[static_cast<std::size_t>(stepOf[static_cast<std::size_t>(uv)])]);
    changed = std::move(shortened);
  }
  int heldBack = 0;
  for (const step& each : steps) {
    if (each.halvings > 0) ++heldBack;
    stepOf[static_cast<std::size_t>(each.uv)] = -1;
  }
  return heldBack;
}
