#include <doctest/doctest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;
using math::Matrix4;
using math::Vec3;

namespace {

bool isNear(const Matrix4& a, const Matrix4& b, double tolerance = 1e-12) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      if (std::abs(a[row][column] - b[row][column]) > tolerance) return false;
  return true;
}

/// A rotation about one axis, written out.
Matrix4 axisRotation(int axis, double radians) {
  Matrix4 m;
  const int i = (axis + 1) % 3, j = (axis + 2) % 3;
  m[i][i] = m[j][j] = std::cos(radians);
  m[i][j] = std::sin(radians);
  m[j][i] = -std::sin(radians);
  return m;
}

}  // namespace

TEST_CASE("transform: the local matrix is the product of its parts, in all six rotate orders") {
  Scene scene;
  scene.make("transform", "t");
  const Vec3 angles{0.3, -1.1, 2.2}, scale{2, 0.5, -1.5}, shear{0.2, -0.1, 0.4}, move{1, 2, 3};
  const Vec3 rotatePivot{0.5, 1, -2}, scalePivot{-1, 3, 0.25}, pivotMove{0.1, 0.2, 0.3},
      axis{0.7, 0.1, -0.4};
  scene.setVec3("t.rotatePivot", rotatePivot);
  scene.setVec3("t.scalePivot", scalePivot);
  scene.setVec3("t.rotatePivotTranslate", pivotMove);
  scene.setVec3("t.scalePivotTranslate", pivotMove * 2);
  scene.setVec3("t.rotateAxis", axis);
  Matrix4 shearing;
  shearing[1][0] = shear.x;
  shearing[2][0] = shear.y;
  shearing[2][1] = shear.z;
  const int orders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {1, 0, 2}, {2, 1, 0}};
  for (int order = 0; order < 6; ++order) {
    CAPTURE(order);
    scene.set("t.rotateOrder", std::int64_t{order});
    scene.setVec3("t.rotate", angles);
    scene.setVec3("t.scale", scale);
    scene.setVec3("t.shear", shear);
    scene.setVec3("t.translate", move);
    const auto turn = [&](int axisIndex) { return axisRotation(axisIndex, angles[axisIndex]); };
    const Matrix4 expected =
        Matrix4::translation(-scalePivot) * Matrix4::scaling(scale) * shearing *
        Matrix4::translation(scalePivot) * Matrix4::translation(pivotMove * 2) *
        Matrix4::translation(-rotatePivot) * axisRotation(0, axis.x) * axisRotation(1, axis.y) *
        axisRotation(2, axis.z) * turn(orders[order][0]) * turn(orders[order][1]) *
        turn(orders[order][2]) * Matrix4::translation(rotatePivot) *
        Matrix4::translation(pivotMove) * Matrix4::translation(move);
    CHECK(isNear(scene.matrix("t.matrix"), expected));
    const Matrix4 kept = scene.matrix("t.matrix");
    REQUIRE(setLocalMatrix(scene.path("t").node()[0], kept));
    CHECK(isNear(scene.matrix("t.matrix"), kept, 1e-9));
  }
}

TEST_CASE(
    "transform: world matrices follow every change above them and agree with the path to the bit") {
  Scene scene;
  std::mt19937 random(11);
  std::vector<dg::Node*> nodes;
  for (int i = 0; i < 12; ++i)
    nodes.push_back(
        &scene.make("transform", "t#", i > 0 ? nodes[random() % nodes.size()] : nullptr));
  const auto number = [&] { return static_cast<double>(random() % 1000) / 250 - 2; };
  for (int step = 0; step < 300; ++step) {
    dg::Node& node = *nodes[random() % nodes.size()];
    switch (random() % 5) {
      case 0:
        REQUIRE(scene.graph().setVec3(node.plug("translate"), {number(), number(), number()}));
        break;
      case 1:
        REQUIRE(scene.graph().setVec3(node.plug("rotate"), {number(), number(), number()}));
        break;
      case 2:
        REQUIRE(scene.graph().set(node.plug("inheritsTransform"), std::int64_t{random() % 3 != 0}));
        break;
      case 3:
        (void)scene->reparent(scene::firstPath(node), nodes[random() % nodes.size()]);
        break;
      case 4:
        (void)scene->addInstance(node, nodes[random() % nodes.size()]);
        break;
    }
    // Reading only some leaves others dirty: a later change must still reach all of them.
    dg::Node& read = *nodes[random() % nodes.size()];
    const auto paths = scene::allPaths(read);
    for (std::size_t i = 0; i < paths.size() && i < 8; ++i) {
      const auto value = scene.graph().get(read.plug("worldMatrix").element(static_cast<Index>(i)));
      REQUIRE(value);
      const Matrix4 world = dg::dataAs<dg::MatrixData>(*value)->value,
                    expected = paths[i].inclusiveMatrix();
      REQUIRE(std::memcmp(&world, &expected, sizeof world) == 0);
    }
    if (paths.size() > 40) break;
  }
}

TEST_CASE("transform: a write that meets a locked or connected part changes nothing") {
  Scene scene;
  dg::Node& node = scene.make("transform", "t");
  dg::Node& driver = scene.make("transform", "driver");
  REQUIRE(scene.graph().connect(driver.plug("translateX"), node.plug("rotateZ")));
  auto components = *readTransform(node);
  components.translate = {1, 2, 3};
  components.rotate.z = 1;
  const std::uint64_t before = scene->hash();
  CHECK_FALSE(writeTransform(node, components));
  CHECK(scene->hash() == before);
  components.rotate.z = 0;
  CHECK(writeTransform(node, components));
  CHECK(scene.real("t.translateY") == 2);
}

TEST_CASE(
    "transform: a box around a transform holds all that shows below it, in its parent's space") {
  Scene scene;
  scene.cube();
  scene.setVec3("pCube1.translate", {5, 0, 0});
  scene.setVec3("pCube1.scale", {2, 2, 2});
  CHECK(scene.real("pCube1.boundingBoxMinX") == 4);
  CHECK(scene.real("pCube1.boundingBoxMaxY") == 1);
  CHECK(scene.real("pCube1.boundingBoxCenterX") == 5);
  CHECK(scene.real("pCubeShape1.boundingBoxSizeZ") == 1);
}

TEST_CASE(
    "new scene: the default views look at the origin and nothing of a new scene can be deleted") {
  Scene scene;
  const Matrix4 view = scene.path("perspShape").inclusiveMatrix();
  const double distance = scene.real("perspShape.centerOfInterest");
  CHECK(math::length(math::transformPoint({0, 0, -distance}, view)) < 1e-5);
  for (const char* name : {"top", "front", "side"}) {
    CAPTURE(name);
    const Matrix4 matrix = scene.path(name).inclusiveMatrix();
    CHECK(math::length(math::transformPoint({0, 0, -100.1}, matrix)) < 1e-12);
    CHECK_FALSE(scene->deleteNodes({scene.path(name).node()}));
  }
  CHECK(scene.matrix("top.matrix")[1][2] == doctest::Approx(-1));  // up in the picture is -z
  CHECK_FALSE(scene->deleteNodes({scene->nodesNamed("initialShadingGroup").front()}));
  const std::uint64_t once = scene->graph().nodes().size();
  scene->reset();
  CHECK(scene->graph().nodes().size() == once);
}
