#include "host/ops/uv/layout_settle.h"

#include <doctest/doctest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace host;
using namespace host::ops::flat;

namespace {

/// A disc, or a ring when `hole` is above 0.
PackShape disc(double radius, double hole, int corners) {
  PackShape shape;
  const auto on = [&](double r, int i) {
    const double angle = 2 * std::numbers::pi * (i % corners) / corners;
    return Point{r * std::cos(angle), r * std::sin(angle)};
  };
  for (int i = 0; i < corners; ++i) {
    shape.triangles.push_back({on(hole, i), on(radius, i), on(radius, i + 1)});
    if (hole > 0) shape.triangles.push_back({on(hole, i), on(radius, i + 1), on(hole, i + 1)});
  }
  return shape;
}

PackShape box(double width, double height) {
  return {
      {{Point{0, 0}, {width, 0}, {width, height}}, {Point{0, 0}, {width, height}, {0, height}}}};
}

std::vector<PackShape> mixed(int count) {
  std::mt19937 random(5);
  const auto size = [&] { return 0.5 + 0.001 * static_cast<double>(random() % 1500); };
  std::vector<PackShape> shapes;
  for (int i = 0; i < count; ++i)
    shapes.push_back(i % 3 == 0   ? disc(size(), 0, 24)
                     : i % 3 == 1 ? disc(1.5 * size(), 0.9, 20)
                                  : box(size(), 1.5 * size()));
  return shapes;
}

/// Points along the sides of all triangles: a slow way of measuring distances.
std::vector<Point> spots(const PackShape& shape, const PackPlace& place, double scale) {
  std::vector<Point> points;
  for (const auto& t : shape.triangles)
    for (std::size_t k = 0; k < 3; ++k)
      for (int i = 0; i < 12; ++i)
        points.push_back(place.at(t[k] + (i / 12.0) * (t[(k + 1) % 3] - t[k]), scale));
  return points;
}

double leastGap(const std::vector<PackShape>& shapes, const Packing& packing) {
  std::vector<std::vector<Point>> all;
  for (std::size_t i = 0; i < shapes.size(); ++i)
    all.push_back(spots(shapes[i], packing.places[i], packing.scale));
  double least = 1e300;
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const Point& p : all[i]) {
      least = std::min({least, p.x, p.y, 1 - p.x, 1 - p.y});
      for (std::size_t j = 0; j < i; ++j)
        for (const Point& q : all[j])
          least = std::min(least, std::max(std::abs(p.x - q.x), std::abs(p.y - q.y)));
    }
  return least;
}

double area(const std::vector<PackShape>& shapes) {
  double sum = 0;
  for (const PackShape& shape : shapes)
    for (const auto& t : shape.triangles) sum += 0.5 * std::abs(doubleArea(t[0], t[1], t[2]));
  return sum;
}

}  // namespace

TEST_CASE("settled: shapes grow into the slack of a loose packing and keep the gutter") {
  const std::vector<PackShape> shapes = mixed(36);
  // Six by six places that are far too large.
  Packing loose;
  loose.scale = 0.02;
  for (int i = 0; i < 36; ++i)
    loose.places.push_back({{1, 0}, {(i % 6 + 0.5) / 6, (i / 6 + 0.5) / 6}});
  for (const double gutter : {0.0, 0.004}) {
    const PackOptions options{.gutter = gutter};
    const auto tight = settled(shapes, options, loose, 6'000'000);
    REQUIRE(tight);
    CHECK(tight->scale > 1.5 * loose.scale);
    CHECK(leastGap(shapes, *tight) >= gutter);
    const auto again = settled(shapes, options, loose, 6'000'000);
    REQUIRE(again);
    CHECK(again->scale == tight->scale);
    CHECK(again->places[7].offset == tight->places[7].offset);
  }
  const auto upright =
      settled(shapes, {.gutter = 0.002, .turns = PackOptions::Turns::None}, loose, 3'000'000);
  REQUIRE(upright);
  for (const PackPlace& place : upright->places) CHECK(place.turn == Point{1, 0});
}

TEST_CASE("settled: nothing moves through what is standing, and no outline is refused") {
  const std::vector<PackShape> shapes{box(0.1, 0.1), box(0.1, 0.1)};
  PackOptions options{.gutter = 0.01};
  // A wall from below to above, one box on either side of it.
  options.standing = {box(0.05, 1)};
  for (auto& t : options.standing[0].triangles)
    for (Point& p : t) p.x += 0.3;
  Packing start;
  start.places = {{{1, 0}, {0.1, 0.4}}, {{1, 0}, {0.6, 0.4}}};
  const auto done = settled(shapes, options, start, 2'000'000);
  REQUIRE(done);
  CHECK(done->scale > 1.5);
  CHECK(done->scale * 0.1 < 0.3);
  for (const Point& p : spots(shapes[0], done->places[0], done->scale)) CHECK(p.x <= 0.29);
  for (const Point& p : spots(shapes[1], done->places[1], done->scale)) CHECK(p.x >= 0.36);

  PackShape point;
  point.triangles = {{Point{0, 0}, {0, 0}, {0, 0}}};
  CHECK_FALSE(settled(std::vector{box(1, 1), point}, {}, start, 1'000'000));
}

TEST_CASE("packShapes: settling reaches what cells alone do not") {
  const std::vector<PackShape> shapes = mixed(60);
  const auto packing = packShapes(shapes, {.gutter = 0.004});
  REQUIRE(packing);
  CHECK(leastGap(shapes, *packing) >= 0.004);
  CHECK(area(shapes) * packing->scale * packing->scale > 0.66);
}
