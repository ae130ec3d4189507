#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "host/math/tolerance.h"
#include "host/viewport/camera_moves.h"
#include "host/viewport/projection.h"

namespace host::viewport {

namespace {

std::vector<Camera> cameras() {
  std::vector<Camera> result;
  for (const bool isOrthographic : {false, true})
    for (const Vec3& eye : {Vec3{3, 4, 12}, Vec3{-8, -2, 1}, Vec3{0, 20, 0}}) {
      Camera camera;
      camera.orthographic = isOrthographic;
      lookAt(camera, eye, {0.3, -0.2, 0.1});
      result.push_back(camera);
    }
  return result;
}

constexpr PortSize kPorts[] = {{640, 480}, {1280, 720}, {300, 900}, {1, 1}};

}  // namespace

TEST_CASE("projection: pixels and world points map back and forth") {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (const Camera& camera : cameras())
    for (const PortSize port : kPorts) {
      const ViewProjection view(camera, port);
      for (int i = 0; i < 50; ++i) {
        const Vec3 point{unit(random), unit(random), unit(random)};
        const ViewPosition at = view.worldToView(point);
        REQUIRE(at.inFront);
        CHECK(math::distance(view.viewToWorldAt({at.x, at.y}, point), point) < 1e-9);
        const ViewRay ray = view.viewToWorld({at.x, at.y});
        const Vec3 off = math::cross(point - ray.nearPoint, ray.direction());
        CHECK(math::length(off) < 1e-8);
        CHECK(view.worldToView(ray.nearPoint).depth == doctest::Approx(camera.nearClip));
        CHECK(view.worldToView(ray.farPoint).depth == doctest::Approx(camera.farClip));
      }
    }
}

TEST_CASE("projection: agrees with the view and projection matrices, (0, 0) at the lower left") {
  const Vec3 point{0.4, -0.7, 0.2};
  for (const Camera& camera : cameras())
    for (const PortSize port : kPorts) {
      const ViewProjection view(camera, port);
      const ViewPosition at = view.worldToView(point);
      const Vec3 clip = math::transformPoint(point, view.view() * view.projection());
      CHECK(at.x == doctest::Approx((clip.x + 1) / 2 * port.width));
      CHECK(at.y == doctest::Approx((clip.y + 1) / 2 * port.height));
      const ViewPosition above = view.worldToView(point + camera.up() * 0.1);
      CHECK(above.y > at.y);
    }
}

TEST_CASE("projection: what lies behind the eye or outside is said to be") {
  Camera camera;
  lookAt(camera, {0, 0, 10}, {0, 0, 0});
  const ViewProjection view(camera, {640, 480});
  CHECK_FALSE(view.worldToView({0, 0, 0}).isClipped);
  CHECK_FALSE(view.worldToView({0, 0, 11}).inFront);
  CHECK(view.worldToView({0, 0, 11}).isClipped);
  CHECK(view.worldToView({0, 0, 9.95}).isClipped);
  CHECK(view.worldToView({100, 0, 0}).isClipped);
  CHECK(std::isfinite(view.worldToView({1, 1, 10}).x));
}

TEST_CASE("film fit: the gate's field of view appears along the fitted side") {
  Camera camera;
  const double tanWide = 25.4 * camera.horizontalFilmAperture / (2 * camera.focalLength);
  const double tanHigh = 25.4 * camera.verticalFilmAperture / (2 * camera.focalLength);
  for (const double aspect : {0.5, 1.0, 1.5, 2.5}) {
    CAPTURE(aspect);
    camera.filmFit = FilmFit::Horizontal;
    CHECK(viewExtents(camera, aspect).halfWidth == doctest::Approx(tanWide));
    camera.filmFit = FilmFit::Vertical;
    CHECK(viewExtents(camera, aspect).halfHeight == doctest::Approx(tanHigh));
    camera.filmFit = FilmFit::Fill;
    CHECK(viewExtents(camera, aspect).halfWidth <= doctest::Approx(tanWide));
    CHECK(viewExtents(camera, aspect).halfHeight <= doctest::Approx(tanHigh));
    camera.filmFit = FilmFit::Overscan;
    CHECK(viewExtents(camera, aspect).halfWidth >= doctest::Approx(tanWide));
    CHECK(viewExtents(camera, aspect).halfHeight >= doctest::Approx(tanHigh));
  }
}

TEST_CASE("view: scale and mirroring of the camera don't change the picture's frame") {
  Camera camera;
  lookAt(camera, {5, 3, 8}, {0, 0, 0});
  Camera scaled = camera;
  scaled.world = Matrix4::scaling({2, 3, 0.5}) * camera.world;
  CHECK(math::distance(camera.right(), scaled.right()) < 1e-12);
  CHECK(math::distance(camera.up(), scaled.up()) < 1e-12);
  CHECK(math::determinant(viewMatrix(scaled)) == doctest::Approx(1));
}

TEST_CASE("frame: keeps all points in view and fills the port in one direction") {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> unit(-1, 1);
  for (const double scale : {1e-3, 1.0, 1e4})
    for (Camera camera : cameras())
      for (const PortSize port : {PortSize{640, 480}, PortSize{1600, 1000}, PortSize{300, 900}}) {
        std::vector<Vec3> points;
        for (int i = 0; i < 40; ++i)
          points.push_back(Vec3{3 * unit(random), unit(random), 0.5 * unit(random) + 7} * scale);
        const Vec3 direction = camera.viewDirection();
        REQUIRE(frame(camera, port.aspect(), points, 0.9));
        CHECK(math::distance(direction, camera.viewDirection()) < 1e-9);
        const ViewProjection view(camera, port);
        double share = 0;
        for (const Vec3& point : points) {
          const ViewPosition at = view.worldToView(point);
          CHECK_FALSE(at.isClipped);
          share = std::max(
              {share, std::abs(2 * at.x / port.width - 1), std::abs(2 * at.y / port.height - 1)});
        }
        CHECK(share == doctest::Approx(0.9).epsilon(1e-6));
      }
}

TEST_CASE("frame: one point, nothing at all and NaN are survived") {
  for (Camera camera : cameras()) {
    const Camera before = camera;
    CHECK_FALSE(frame(camera, 1.5, {}));
    CHECK(camera == before);
    const Vec3 points[] = {{std::nan(""), 0, 0}, {1, 2, 3}};
    REQUIRE(frame(camera, 1.5, points));
    CHECK_FALSE(ViewProjection(camera, {600, 400}).worldToView({1, 2, 3}).isClipped);
  }
}

TEST_CASE(
    "tumble: turns about the pivot, keeps its distance and an upright horizon, and stops at the "
    "poles") {
  Camera camera;
  lookAt(camera, {4, 3, 9}, {1, 0, 0});
  const Vec3 pivot{1, 0, 0};
  const double before = math::distance(camera.eye(), pivot);
  for (int step = 0; step < 50; ++step) {
    tumble(camera, pivot, 13, 17);
    CHECK(math::distance(camera.eye(), pivot) == doctest::Approx(before));
    CHECK(std::abs(camera.right().y) < 1e-9);
    CHECK(camera.up().y > 0);
  }
  CHECK(camera.viewDirection().y == doctest::Approx(-std::sin(math::toRadians(89.9))));
}

TEST_CASE(
    "track and dolly: what lies at the centre of interest follows the cursor and grows by the "
    "factor") {
  const PortSize port{800, 600};
  for (Camera camera : cameras()) {
    const Vec3 point = camera.centerOfInterestPoint() + camera.right() * 0.01;
    const ViewPosition before = ViewProjection(camera, port).worldToView(point);
    Camera tracked = camera;
    track(tracked, port, 31, -12);
    const ViewPosition after = ViewProjection(tracked, port).worldToView(point);
    CHECK(after.x - before.x == doctest::Approx(31));
    CHECK(after.y - before.y == doctest::Approx(-12));
    dolly(camera, 2);
    const ViewPosition closer = ViewProjection(camera, port).worldToView(point);
    CHECK(closer.x - 400 == doctest::Approx(2 * (before.x - 400)));
  }
}

}  // namespace host::viewport
