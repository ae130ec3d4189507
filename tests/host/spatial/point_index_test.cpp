#include "host/spatial/point_index.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace host;
using host::math::Vec3;
using host::math::Vec3f;
using host::spatial::PointIndex;

namespace {

/// Ids by distance, then id: what a sort of everything says.
std::vector<Index> byDistance(const std::vector<Vec3f>& points, const Vec3& p) {
  std::vector<std::pair<double, Index>> order;
  for (std::size_t i = 0; i < points.size(); ++i)
    if (isFinite(Vec3(points[i])))
      order.emplace_back(lengthSquared(Vec3(points[i]) - p), static_cast<Index>(i));
  std::ranges::sort(order);
  std::vector<Index> ids;
  for (const auto& [squared, id] : order) ids.push_back(id);
  return ids;
}

}  // namespace

TEST_CASE(
    "PointIndex: agrees with sorting everything by distance, ties and broken points included") {
  std::mt19937 random(7);
  for (const int count : {0, 1, 7, 8, 9, 100, 2000}) {
    CAPTURE(count);
    std::vector<Vec3f> points;
    // Whole coordinates in a small range give many equal distances and many equal points.
    std::uniform_int_distribution<int> whole(-6, 6);
    for (int i = 0; i < count; ++i)
      points.push_back({static_cast<float>(whole(random)), static_cast<float>(whole(random)),
                        i % 3 == 0 ? 0.0f : static_cast<float>(whole(random))});
    if (count > 50) points[20] = {std::nanf(""), 0, 0};
    const PointIndex index(points);
    for (int i = 0; i < 60; ++i) {
      const Vec3 p{whole(random) * 1.5, whole(random) * 0.5, static_cast<double>(whole(random))};
      const std::vector<Index> order = byDistance(points, p);
      CHECK(index.nearest(p) == (order.empty() ? kNone : order[0]));
      std::vector<Index> within;
      for (Index id : order)
        if (lengthSquared(Vec3(points[static_cast<std::size_t>(id)]) - p) <= 9)
          within.push_back(id);
      CHECK(index.nearest(p, 3.0) == (within.empty() ? kNone : within[0]));
      std::ranges::sort(within);
      CHECK(index.within(p, 3.0) == within);
    }
  }
}

TEST_CASE("PointIndex: nothing is near a place that is nowhere, or within a negative radius") {
  const PointIndex index(std::vector<Vec3f>{{0, 0, 0}, {1, 0, 0}});
  CHECK(index.nearest({NAN, 0, 0}) == kNone);
  CHECK(index.within({0, 0, 0}, -1).empty());
  CHECK(index.nearest({0, 5, 0}, 4.9) == kNone);
}
