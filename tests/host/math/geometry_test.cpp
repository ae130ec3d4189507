#include <doctest/doctest.h>

#include <cmath>
#include <random>

#include "host/math/box.h"
#include "host/math/frame.h"
#include "host/math/matrix4.h"
#include "host/math/plane.h"
#include "host/math/ray.h"

using namespace host::math;

namespace {

class Random {
 public:
  double operator()(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(engine_);
  }
  Vec3 vec(double size) {
    return {(*this)(-size, size), (*this)(-size, size), (*this)(-size, size)};
  }

 private:
  std::mt19937 engine_{5};
};

Matrix4 randomMatrix(Random& random, bool isAffineOnly) {
  Matrix4 m;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < (isAffineOnly ? 3 : 4); ++j) m[i][j] = random(-2, 2);
  return m;
}

}  // namespace

TEST_CASE("inverse: undoes a matrix at any scale and refuses singular ones") {
  Random random;
  for (int i = 0; i < 100; ++i) {
    const Matrix4 m = randomMatrix(random, i % 2 == 0);
    if (std::abs(determinant(m)) < 0.05) continue;
    const Matrix4 product = m * *inverse(m);
    for (int r = 0; r < 4; ++r)
      for (int c = 0; c < 4; ++c) CHECK(std::abs(product[r][c] - (r == c)) < 1e-9);
  }
  for (double s : {1e-12, 1e-3, 1e6}) CHECK(inverse(Matrix4::scaling({s, s, s})));
  CHECK_FALSE(inverse(Matrix4::scaling({1, 0, 1})));
  Matrix4 dependent;
  for (int j = 0; j < 3; ++j) dependent[1][j] = 2 * dependent[0][j];
  CHECK_FALSE(inverse(dependent));
  CHECK_FALSE(inverse(Matrix4::scaling({1, NAN, 1})));
}

TEST_CASE("transformNormal: stays perpendicular to the surface, flat and mirrored maps included") {
  Random random;
  for (int i = 0; i < 100; ++i) {
    Matrix4 m = randomMatrix(random, true);
    if (i % 4 == 0) m[2][0] = m[2][1] = m[2][2] = 0;  // flattened along z
    const Vec3 u = random.vec(1), v = random.vec(1), n = cross(u, v);
    const Vec3 moved = transformNormal(n, m);
    CHECK(std::abs(dot(moved, transformVector(u, m))) < 1e-8 * (1 + length(moved)));
    CHECK(std::abs(dot(moved, transformVector(v, m))) < 1e-8 * (1 + length(moved)));
  }
  CHECK(normalized(transformNormal({1, 0, 0}, Matrix4::scaling({-1, 1, 1}))) == Vec3{-1, 0, 0});
}

TEST_CASE(
    "intersectTriangle: a fan around a vertex leaves no gap for rays at its edges and centre") {
  Random random;
  for (int i = 0; i < 500; ++i) {
    const Vec3 center = random.vec(10);
    Vec3 rim[5];
    for (int k = 0; k < 5; ++k)
      rim[k] = center + Vec3{std::cos(k * 1.2566), std::sin(k * 1.2566), random(-0.2, 0.2)};
    const double along = random(0, 0.9);
    const Vec3 target = center + (rim[i % 5] - center) * along;
    const Vec3 origin = target + Vec3{random(-1, 1), random(-1, 1), 5};
    int hits = 0;
    for (int k = 0; k < 5; ++k) {
      const auto hit =
          intersectTriangle({origin, target - origin}, center, rim[k], rim[(k + 1) % 5]);
      if (!hit) continue;
      ++hits;
      CHECK(hit->t == doctest::Approx(1).epsilon(1e-6));
    }
    CHECK(hits >= 1);
  }
  CHECK_FALSE(intersectTriangle({{0, 0, 1}, {0, 0, 0}}, {-1, -1, 0}, {1, -1, 0}, {0, 1, 0}));
  CHECK_FALSE(intersectTriangle({{0, 0, 1}, {0, 0, -1}}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}));
}

TEST_CASE(
    "closestOnTriangle: no sampled point of the triangle is nearer, slivers and points included") {
  Random random;
  for (int i = 0; i < 300; ++i) {
    const Vec3 a = random.vec(2), b = i % 7 == 0 ? a : random.vec(2);
    const Vec3 c = i % 11 == 0 ? a + (b - a) * random(-1, 2) : random.vec(2);
    const Vec3 p = random.vec(4);
    const auto [u, v] = closestOnTriangle(a, b, c, p);
    CHECK(u >= -1e-12);
    CHECK(v >= -1e-12);
    CHECK(u + v <= 1 + 1e-12);
    const double found = distance(a * (1 - u - v) + b * u + c * v, p);
    for (int s = 0; s <= 20; ++s)
      for (int t = 0; t + s <= 20; ++t)
        CHECK(found <= distance(a + (b - a) * (s / 20.0) + (c - a) * (t / 20.0), p) + 1e-12);
  }
}

TEST_CASE("box: rays in its faces' planes count as inside, NaN adds nothing, empty stays empty") {
  const Box box({0, 0, 0}, {1, 1, 1});
  const auto grazing = intersect({{-1, 1, 0.5}, {2, 0, 0}}, box);
  REQUIRE(grazing);
  CHECK(grazing->near == doctest::Approx(0.5));
  CHECK(grazing->far == doctest::Approx(1));
  CHECK_FALSE(intersect({{-1, 1.001, 0.5}, {2, 0, 0}}, box));
  CHECK_FALSE(intersect({{0, 0, 0}, {1, 0, 0}}, Box()));
  Box grown;
  grown.add(Vec3{NAN, NAN, NAN});
  CHECK(grown.isEmpty());
  CHECK(grown.transformed(Matrix4::scaling({2, 2, 2})).isEmpty());
  grown.inflate(1);
  CHECK(grown.isEmpty());
  CHECK(box.distanceSquared({2, 3, 0.5}) == doctest::Approx(5));
}

TEST_CASE("frame and plane: right-handed, lossless, and defined for hints along the normal") {
  Random random;
  for (int i = 0; i < 50; ++i) {
    const Vec3 normal = random.vec(1);
    const Frame frame =
        frameFromNormal(random.vec(5), normal, i % 3 == 0 ? normal * 3.0 : random.vec(1));
    CHECK(distance(cross(frame.x, frame.y), frame.z) < 1e-12);
    CHECK(dot(frame.z, normal) > 0);
    const Vec3 p = random.vec(5);
    CHECK(distance(frame.toWorld(frame.toLocal(p)), p) < 1e-12);
    CHECK(distance(transformPoint(frame.toLocal(p), frame.matrix()), p) < 1e-12);
    const Plane plane(frame.origin, normal);
    CHECK(std::abs(plane.signedDistance(plane.project(p))) < 1e-12);
    CHECK(distance(plane.mirror(plane.mirror(p)), p) < 1e-12);
    const auto t = intersect({p, normal}, plane);
    REQUIRE(t);
    CHECK(distance(p + normal * *t, plane.project(p)) < 1e-10);
  }
  CHECK_FALSE(intersect({{0, 1, 0}, {1, 0, 0}}, Plane({0, 0, 0}, {0, 3, 0})));
}
