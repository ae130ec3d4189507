#include <doctest/doctest.h>

#include <numbers>

#include "host/edits/bounds.h"
#include "host/edits/freeze.h"
#include "host/edits/move.h"
#include "host/edits/rotate_scale.h"
#include "host/edits/transform_targets.h"
#include "host/edits/xform.h"
#include "tests/host/nodes/nodes_fixture.h"

namespace host::edits {
namespace {

using math::Vec3;
using nodes::test::Scene;

constexpr double kQuarter = std::numbers::pi / 2;

Vec3 worldPoint(Scene& scene, const std::string& object, int vertex) {
  const scene::DagPath shape = scene.path(object).toShape();
  return math::transformPoint(scene.mesh(*shape.node()).point(vertex), shape.inclusiveMatrix());
}

void checkNear(const Vec3& a, const Vec3& b) {
  INFO(a.x, " ", a.y, " ", a.z, " against ", b.x, " ", b.y, " ", b.z);
  CHECK(math::distance(a, b) < 1e-5);
}

/// Two cubes: "plain", and "bent" in a turned, mirrored, unevenly scaled group.
struct Place {
  Scene scene;
  Place() {
    scene.cube("plain");
    scene.cube("bent");
    dg::Node& group = scene.make("transform", "group");
    REQUIRE(scene->reparent(scene.path("bent"), &group));
    scene.setVec3("group.scale", {-2, 3, 0.5});
    scene.setVec3("group.rotate", {0.4, -0.3, 1.2});
    scene.setVec3("group.translate", {1, 2, 3});
    scene.setVec3("bent.rotate", {0.2, 0.9, -0.5});
  }
};

TEST_CASE("move: objects and vertices go as far in the world whatever is above them") {
  Place place;
  Scene& scene = place.scene;
  const Vec3 by{0.7, -1.1, 2.3};
  for (const std::string object : {"plain", "bent"}) {
    CAPTURE(object);
    const Vec3 first = worldPoint(scene, object, 0), sixth = worldPoint(scene, object, 6);
    REQUIRE(move(*scene.document, scene.list(object), {.amount = by, .isRelative = true}));
    checkNear(worldPoint(scene, object, 6), sixth + by);
    const auto vertex = scene.list(object + ".vtx[0]");
    REQUIRE(move(*scene.document, vertex, {.amount = by, .isRelative = true}));
    checkNear(worldPoint(scene, object, 0), first + by + by);
    const auto after = scene.points(*scene.path(object).toShape().node());
    REQUIRE(move(*scene.document, vertex, {.amount = {0.1, 0, 0}, .isRelative = true}));
    REQUIRE(move(*scene.document, vertex, {.amount = {-0.1, 0, 0}, .isRelative = true}));
    // What is not moved keeps its bits.
    const auto last = scene.points(*scene.path(object).toShape().node());
    CHECK(std::equal(after.begin() + 1, after.end(), last.begin() + 1));
    // To a height, leaving the other coordinates.
    REQUIRE(move(*scene.document, vertex, {.axes = {false, true, false}, .amount = {9, 4, 9}}));
    Vec3 expected = first + by + by;
    expected.y = 4;
    checkNear(worldPoint(scene, object, 0), expected);
  }
}

TEST_CASE("move: an object and components of it go each by itself, instances once each") {
  Place place;
  Scene& scene = place.scene;
  auto both = scene.list("plain");
  both.merge(scene.list("plain.vtx[3]"));
  const Vec3 corner = worldPoint(scene, "plain", 3), other = worldPoint(scene, "plain", 0);
  REQUIRE(move(*scene.document, both, {.amount = {1, 0, 0}, .isRelative = true}));
  checkNear(worldPoint(scene, "plain", 0), other + Vec3{1, 0, 0});
  checkNear(worldPoint(scene, "plain", 3), corner + Vec3{2, 0, 0});

  dg::Node& copy = scene.make("transform", "copy");
  REQUIRE(scene->addInstance(*scene.path("plain").toShape().node(), &copy));
  auto instances = scene.list("plain.vtx[3]");
  scene::SelectionList second;
  second.add(scene.path("copy"), scene::Component(scene::ComponentType::Vertex, {3}));
  instances.merge(second);
  REQUIRE(instances.length() == 2);
  const Vec3 before = worldPoint(scene, "copy", 3);
  REQUIRE(move(*scene.document, instances, {.amount = {0, 1, 0}, .isRelative = true}));
  checkNear(worldPoint(scene, "copy", 3), before + Vec3{0, 2, 0});
}

TEST_CASE("move: a pivot moves alone, along the object's axes or the world's") {
  Place place;
  Scene& scene = place.scene;
  const Vec3 corner = worldPoint(scene, "bent", 0);
  const auto pivot = scene.list("bent.rotatePivot");
  REQUIRE(move(*scene.document, pivot, {.amount = {1, 2, 3}}));
  checkNear(worldPoint(scene, "bent", 0), corner);
  const auto middle = middleOfPivots(scene.list("bent"));
  REQUIRE(middle);
  checkNear(*middle, {1, 2, 3});
  REQUIRE(move(*scene.document, pivot, {.amount = {0, 0, 0}, .space = MoveSpace::Object}));
  checkNear(scene.path("bent").inclusiveMatrix().m[3][0] * Vec3{1, 0, 0},
            {middleOfPivots(scene.list("bent"))->x, 0, 0});
  CHECK_FALSE(middleOfPivots(scene.list("initialShadingGroup")));
}

TEST_CASE("what can't be transformed is refused whole, with nothing before it changed") {
  Place place;
  Scene& scene = place.scene;
  dg::Node& driver = scene.make("transform", "driver");
  REQUIRE(scene.graph().connect(driver.plug("translateX"), scene.plug("bent.translateX")));
  REQUIRE(scene.graph().connect(driver.plug("rotateX"), scene.plug("bent.rotateX")));
  REQUIRE(scene.graph().connect(driver.plug("scaleX"), scene.plug("bent.scaleX")));
  auto list = scene.list("plain.vtx[0:3]");
  list.merge(scene.list("plain"));
  list.merge(scene.list("bent"));
  const std::uint64_t before = scene->hash();
  const TurnOptions turn{.amount = {2, 0.5, 3}, .isRelative = true};
  for (const auto& done : {move(*scene.document, list, {.amount = {1, 1, 1}, .isRelative = true}),
                           rotate(*scene.document, list, turn), scale(*scene.document, list, turn),
                           xform(*scene.document, list, {.translation = Vec3{1, 2, 3}})}) {
    REQUIRE_FALSE(done);
    CHECK(done.error().message.find("bent") != std::string::npos);
    CHECK(scene->hash() == before);
  }
  list.merge(scene.list("initialShadingGroup"));
  const auto lost = move(*scene.document, list, {});
  REQUIRE_FALSE(lost);
  CHECK(lost.error().message == "'initialShadingGroup' has no place in space.");
}

TEST_CASE("move: below a scale of zero only the object's own axes are left") {
  Place place;
  Scene& scene = place.scene;
  scene.setVec3("group.scale", {1, 0, 1});
  CHECK_FALSE(move(*scene.document, scene.list("bent"), {.amount = {1, 1, 1}}));
  CHECK_FALSE(move(*scene.document, scene.list("bent.vtx[0]"), {.amount = {1, 1, 1}}));
  REQUIRE(
      move(*scene.document, scene.list("bent"), {.amount = {1, 2, 3}, .space = MoveSpace::Local}));
  CHECK(scene.real("bent.translateY") == 2);
}

TEST_CASE("rotate: about the world's axes an object turns in place, below whatever") {
  Place place;
  Scene& scene = place.scene;
  scene.setVec3("group.scale", {2, 2, 2});  // an uneven scale would shear what turns below it
  const Vec3 centre = math::transformPoint(Vec3{}, scene.path("bent").inclusiveMatrix());
  const Vec3 arm = worldPoint(scene, "bent", 0) - centre;
  REQUIRE(rotate(*scene.document, scene.list("bent"),
                 {.amount = {0, kQuarter, 0}, .isRelative = true, .isWorld = true}));
  checkNear(worldPoint(scene, "bent", 0) - centre, {arm.z, arm.y, -arm.x});
  // About a point, the place turns along.
  const Vec3 point{5, 0, 0}, before = worldPoint(scene, "bent", 0) - point;
  REQUIRE(rotate(*scene.document, scene.list("bent"),
                 {.amount = {0, kQuarter, 0}, .isRelative = true, .pivot = point}));
  checkNear(worldPoint(scene, "bent", 0), point + Vec3{before.z, before.y, -before.x});
}

TEST_CASE("components turn and grow about the middle of all of them, or a pivot") {
  Place place;
  Scene& scene = place.scene;
  auto list = scene.list("plain.vtx[0]");
  list.merge(scene.list("bent.vtx[0]"));
  const Vec3 a = worldPoint(scene, "plain", 0), b = worldPoint(scene, "bent", 0);
  const Vec3 middle = (a + b) * 0.5, half = a - middle;
  REQUIRE(rotate(*scene.document, list, {.amount = {0, 0, kQuarter}, .isRelative = true}));
  checkNear(worldPoint(scene, "plain", 0), middle + Vec3{-half.y, half.x, half.z});
  checkNear(worldPoint(scene, "bent", 0), middle - Vec3{-half.y, half.x, half.z});
  REQUIRE(scale(*scene.document, list,
                {.amount = {3, 1, 1}, .isRelative = true, .pivot = Vec3{1, 0, 0}}));
  checkNear(worldPoint(scene, "plain", 0),
            {1 + 3 * (middle.x - half.y - 1), middle.y + half.x, middle.z + half.z});

  // Along the object's own axes: the unevenly turned cube keeps its straight edges.
  const auto face = scene.list("bent.vtx[1:6]");
  const Vec3 edge = worldPoint(scene, "bent", 3) - worldPoint(scene, "bent", 1);
  REQUIRE(scale(*scene.document, face,
                {.amount = {1, 1, 1}, .isRelative = true, .componentsByObject = true}));
  checkNear(worldPoint(scene, "bent", 3) - worldPoint(scene, "bent", 1), edge);
}

TEST_CASE("scale: a relative scale about a point keeps that point") {
  Place place;
  Scene& scene = place.scene;
  const Vec3 corner = worldPoint(scene, "bent", 5);
  REQUIRE(scale(*scene.document, scene.list("bent"),
                {.amount = {2, 3, 0.5}, .isRelative = true, .pivot = corner}));
  checkNear(worldPoint(scene, "bent", 5), corner);
  CHECK(scene.real("bent.scaleY") == doctest::Approx(3));
  REQUIRE(scale(*scene.document, scene.list("bent"),
                {.axes = {false, true, false}, .amount = {9, 7, 9}}));
  CHECK(scene.real("bent.scaleX") == doctest::Approx(2));
  CHECK(scene.real("bent.scaleY") == doctest::Approx(7));
}

TEST_CASE("xform: pivots go to the middle of the box, another rotate order turns nothing") {
  Place place;
  Scene& scene = place.scene;
  REQUIRE(move(*scene.document, scene.list("bent.vtx[*]"),
               {.amount = {3, 0, 0}, .isRelative = true, .space = MoveSpace::Object}));
  const Vec3 corner = worldPoint(scene, "bent", 2);
  REQUIRE(xform(*scene.document, scene.list("bent"), {.centersPivots = true}));
  checkNear(*middleOfPivots(scene.list("bent")),
            math::transformPoint({3, 0, 0}, scene.path("bent").inclusiveMatrix()));
  REQUIRE(xform(*scene.document, scene.list("bent"), {.rotateOrder = math::RotateOrder::ZYX}));
  checkNear(worldPoint(scene, "bent", 2), corner);
  REQUIRE(xform(*scene.document, scene.list("bent"),
                {.rotateOrder = math::RotateOrder::XYZ, .preservesRotation = false}));
  CHECK(math::distance(worldPoint(scene, "bent", 2), corner) > 0.01);
}

TEST_CASE("xform: in the world, relative amounts go along the world's axes below whatever") {
  Place place;
  Scene& scene = place.scene;
  const Vec3 by{0.7, -1.1, 2.3}, corner = worldPoint(scene, "bent", 0);
  REQUIRE(xform(*scene.document, scene.list("bent"),
                {.isRelative = true, .isWorld = true, .translation = by}));
  checkNear(worldPoint(scene, "bent", 0), corner + by);
  for (const double size : {2.0, -2.0}) {
    CAPTURE(size);
    scene.setVec3("group.scale", {size, size, size});
    const Vec3 centre = math::transformPoint(Vec3{}, scene.path("bent").inclusiveMatrix());
    const Vec3 arm = worldPoint(scene, "bent", 0) - centre;
    REQUIRE(xform(*scene.document, scene.list("bent"),
                  {.isRelative = true, .isWorld = true, .rotation = Vec3{0, kQuarter, 0}}));
    checkNear(worldPoint(scene, "bent", 0) - centre, {arm.z, arm.y, -arm.x});
  }
}

TEST_CASE("freeze: what is seen stays, the transform is neutral, and an instance is refused") {
  Place place;
  Scene& scene = place.scene;
  const Vec3 corner = worldPoint(scene, "bent", 7);
  dg::Node* group = scene.path("group").node();
  REQUIRE(freeze(*scene.document, {group}, {}));
  checkNear(worldPoint(scene, "bent", 7), corner);
  CHECK(math::isIdentity(scene.path("bent").inclusiveMatrix()));
  REQUIRE(
      scene->addInstance(*scene.path("bent").toShape().node(), &scene.make("transform", "copy")));
  scene.setVec3("plain.translate", {1, 2, 3});
  const std::uint64_t before = scene->hash();
  CHECK_FALSE(freeze(*scene.document, {scene.path("plain").node(), group}, {}));
  CHECK(scene->hash() == before);
}

}  // namespace
}  // namespace host::edits
