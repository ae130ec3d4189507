#include "host/edits/support_box.h"

#include <doctest/doctest.h>

#include <random>

#include "host/edits/bounds.h"
#include "host/math/transform.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"
#include "tests/host/nodes/nodes_fixture.h"

namespace host::edits {

namespace {

/// All points below a path, place by place.
math::Box visited(const scene::DagPath& path) {
  math::Box box;
  for (scene::PathWalk walk(path); !walk.isDone(); walk.next()) {
    if (!scene::isShape(walk.node())) continue;
    const auto mesh = nodes::evaluatedMesh(walk.node());
    if (!mesh) continue;
    for (const math::Vec3f& point : mesh->points())
      box.add(math::transformPoint(math::Vec3(point), walk.path().inclusiveMatrix()));
  }
  return box;
}

void checkSame(const math::Box& a, const math::Box& b) {
  for (int axis = 0; axis < 3; ++axis) {
    CHECK(a.min[axis] == doctest::Approx(b.min[axis]).epsilon(1e-9));
    CHECK(a.max[axis] == doctest::Approx(b.max[axis]).epsilon(1e-9));
  }
}

}  // namespace

TEST_CASE("nestedBox: turned, scaled, mirrored and independent instances as if all were visited") {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> number(-3, 3);
  for (int round = 0; round < 6; ++round) {
    CAPTURE(round);
    nodes::test::Scene scene;
    scene::Document& document = *scene.document;
    scene::Node* below = scene::dagLinks(scene.cube("leaf")).parents.front();
    for (int level = 0; level < 3; ++level) {
      auto group = document.createNode("transform", "group#");
      REQUIRE(group);
      for (int i = 0; i < 4; ++i) {
        auto way = document.createNode("transform", "way#", group->get());
        REQUIRE(way);
        dg::Graph& graph = document.graph();
        scene::Node& node = **way;
        REQUIRE(graph.setVec3(node.plug("translate"),
                              {number(random), number(random), number(random)}));
        if (round > 0)
          REQUIRE(graph.setVec3(node.plug("scale"), {number(random), 1, number(random)}));
        if (round > 1)
          REQUIRE(
              graph.setVec3(node.plug("rotate"), {number(random), number(random), number(random)}));
        if (round > 3 && level == 1 && i == 2)
          REQUIRE(graph.set(node.plug("inheritsTransform"), std::int64_t{0}));
        REQUIRE(document.addInstance(*below, &node));
      }
      REQUIRE(document.removeInstance(scene::DagPath({below})));
      below = group->get();
    }
    const scene::DagPath top = scene::firstPath(*below);
    CHECK(pointsBelow(*below) > 64 * 8);
    const NestedBox nested = nestedBox(*below, top.inclusiveMatrix(), {});
    CHECK(nested.isExact);
    checkSame(nested.box, visited(top));
    checkSame(worldBox(top), visited(top));
  }
}

}  // namespace host::edits
