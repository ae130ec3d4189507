#include "host/math/nurbs_surface.h"

#include <doctest/doctest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

using namespace host::math;

/// A quarter of a cylinder of radius 2 along z, exact: an arc as a rational parabola by a line.
NurbsSurface quarterCylinder() {
  NurbsSurface s;
  s.degreeU = 2;
  s.degreeV = 1;
  s.knotsU = {0, 0, 1, 1};
  s.knotsV = {0, 3};
  const double half = std::sqrt(0.5);
  for (const Vec3& p : {Vec3{2, 0, 0}, Vec3{2, 2, 0}, Vec3{0, 2, 0}})
    for (const double z : {0.0, 5.0}) {
      s.points.emplace_back(p.x, p.y, z);
      s.weights.push_back(p.x * p.y > 0 ? half : 1);
    }
  return s;
}

/// A bumpy rational surface with spans of different lengths.
NurbsSurface bumpy() {
  NurbsSurface s;
  s.degreeU = 3;
  s.degreeV = 2;
  s.knotsU = {0, 0, 0, 0.5, 2, 3, 3, 3};
  s.knotsV = {1, 1, 1.25, 4, 5, 5};
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(0, 1);
  for (int u = 0; u < s.countU(); ++u)
    for (int v = 0; v < s.countV(); ++v) {
      s.points.emplace_back(u + 0.3 * any(random), any(random), v + 0.3 * any(random));
      s.weights.push_back(0.5 + any(random));
    }
  return s;
}

}  // namespace

TEST_CASE("curved surfaces: a rational arc is round, and its area and normals are a cylinder's") {
  const NurbsSurface s = quarterCylinder();
  REQUIRE(check(s));
  for (double u = 0; u <= 1; u += 0.125) {
    const SurfaceFrame f = s.frame(u, 1.5);
    CHECK(std::hypot(f.place.x, f.place.y) == doctest::Approx(2));
    CHECK(f.place.z == doctest::Approx(2.5));
    CHECK(length(f.normal() - Vec3{f.place.x / 2, f.place.y / 2, 0}) < 1e-12);
  }
  CHECK(s.area() == doctest::Approx(std::numbers::pi * 5).epsilon(1e-6));
}

TEST_CASE("curved surfaces: derivatives are the limits of differences") {
  const NurbsSurface s = bumpy();
  REQUIRE(check(s));
  constexpr double kStep = 1e-4;
  for (const double u : {0.2, 0.7, 1.9, 2.6})
    for (const double v : {1.1, 2.5, 4.7}) {
      const SurfaceFrame f = s.frame(u, v);
      const auto differs = [](const Vec3& a, const Vec3& b, double by) {
        return length(a - b) > by * std::max(1.0, length(a));
      };
      const Vec3 du = (s.at(u + kStep, v) - s.at(u - kStep, v)) / (2 * kStep),
                 dv = (s.at(u, v + kStep) - s.at(u, v - kStep)) / (2 * kStep);
      CHECK_FALSE(differs(f.u, du, 1e-6));
      CHECK_FALSE(differs(f.v, dv, 1e-6));
      const auto slope = [&](double at, double across) { return s.frame(at, across); };
      CHECK_FALSE(
          differs(f.uu, (slope(u + kStep, v).u - slope(u - kStep, v).u) / (2 * kStep), 1e-5));
      CHECK_FALSE(
          differs(f.vv, (slope(u, v + kStep).v - slope(u, v - kStep).v) / (2 * kStep), 1e-5));
      CHECK_FALSE(
          differs(f.uv, (slope(u, v + kStep).u - slope(u, v - kStep).u) / (2 * kStep), 1e-5));
    }
  // The ends of the domain are the corner points, and beyond them nothing changes.
  CHECK(length(s.at(0, 1) - s.points.front()) < 1e-12);
  CHECK(length(s.at(9, 9) - s.points.back()) < 1e-12);
}

TEST_CASE("curved surfaces: the closest place is no farther than any of a dense grid") {
  const NurbsSurface s = bumpy();
  std::mt19937 random(11);
  std::uniform_real_distribution<double> any(-1, 7);
  for (int round = 0; round < 30; ++round) {
    const Vec3 place{any(random), any(random) - 3, any(random)};
    const SurfaceParameter found = s.closest(place);
    double best = 1e9;
    for (double u = 0; u <= 3; u += 0.02)
      for (double v = 1; v <= 5; v += 0.02) best = std::min(best, length(s.at(u, v) - place));
    CHECK(length(s.at(found.u, found.v) - place) <= best + 1e-9);
  }
}

TEST_CASE("curved surfaces: rays meet where the surface is, nearest first, and pass beside it") {
  const NurbsSurface s = quarterCylinder();
  const auto hits = intersect(s, {0, 0, 2}, {1, 1, 0});
  REQUIRE(hits.size() == 1);
  CHECK(hits[0].distance == doctest::Approx(std::sqrt(2.0)));
  CHECK(length(hits[0].place - Vec3{std::sqrt(2.0), std::sqrt(2.0), 2}) < 1e-9);
  CHECK(intersect(s, {0, 0, 2}, {-1, -1, 0}).empty());
  CHECK(intersect(s, {0, 0, 6}, {1, 1, 0}).empty());
  CHECK(intersect(s, {0, 0, 2}, {0, 0, 0}).empty());
  // A chord in front of the arc goes in and out.
  const auto both = intersect(s, {2.4696, -0.1527, 1}, {-1, 1, 0});
  REQUIRE(both.size() == 2);
  CHECK(both[0].distance < both[1].distance);
  for (const SurfaceHit& hit : both)
    CHECK(std::hypot(hit.place.x, hit.place.y) == doctest::Approx(2));
}

TEST_CASE("curved surfaces: planes lie across their normal, evenly") {
  const NurbsSurface flat =
      nurbsPlane({.normal = {0, 1, 0}, .width = 4, .ratio = 0.5, .patchesU = 3});
  REQUIRE(check(flat));
  CHECK(flat.countU() == 6);
  CHECK(length(flat.at(0.25, 0.25) - Vec3{-1, 0, 0.5}) < 1e-12);
  CHECK(length(flat.frame(0.6, 0.3).normal() - Vec3{0, 1, 0}) < 1e-12);
  CHECK(flat.area() == doctest::Approx(8));
  for (const Vec3& normal : {Vec3{1, 0, 0}, Vec3{0, -1, 0}, Vec3{1, 2, -3}}) {
    const NurbsSurface turned = nurbsPlane({.normal = normal, .degree = 1});
    CHECK(length(turned.frame(0.5, 0.5).normal() - normalized(normal)) < 1e-9);
  }
}

TEST_CASE("curved surfaces: what does not fit together is refused with what is wrong") {
  NurbsSurface s = quarterCylinder();
  s.points.pop_back();
  CHECK_FALSE(check(s));
  s = quarterCylinder();
  s.knotsU = {0, 1, 0.5, 1};
  CHECK_FALSE(check(s));
  s = quarterCylinder();
  s.knotsV = {2, 2};
  CHECK_FALSE(check(s));
  s = quarterCylinder();
  s.weights[1] = 0;
  CHECK_FALSE(check(s));
  s = quarterCylinder();
  s.degreeU = 8;
  CHECK_FALSE(check(s));
  CHECK_FALSE(check(NurbsSurface()));
}
