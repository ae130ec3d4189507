#include <doctest/doctest.h>

#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/nodes/history/history_node.h"
#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;
using math::Vec3f;
using scene::Component;
using scene::ComponentType;

namespace {

/// Raises the input vertices; refuses to work on more than three.
void registerRaise(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "raise")
      .parameter(distance("amount", "a", 1))
      .operation([](HistoryContext& context) -> Result<void> {
        if (context.vertices().size() > 3) return fail("three vertices at most");
        for (const VertexId v : context.vertices())
          context.mesh.editPoints()[static_cast<std::size_t>(v)].y +=
              static_cast<float>(context.real("amount"));
        return {};
      });
}

dg::Value components(ComponentType type, std::vector<Index> indices) {
  return dg::DataPtr(std::make_shared<scene::ComponentListData>(
      std::vector<Component>{Component(type, std::move(indices))}));
}

struct RaiseScene : Scene {
  RaiseScene() { registerRaise(types); }
  dg::Node& insert(dg::Node& shape, std::vector<Index> vertices) {
    dg::Node& raise = make("raise");
    REQUIRE(graph().set(raise.plug("inputComponents"),
                        components(ComponentType::Vertex, std::move(vertices))));
    const auto inserted =
        insertHistoryNode(*document, shape, raise.plug("inputPolymesh"), raise.plug("output"));
    if (!inserted) FAIL(inserted.error().message);
    return raise;
  }
};

}  // namespace

TEST_CASE("history: every primitive node makes a sound mesh and follows its attributes") {
  Scene scene;
  for (const char* type : {"polyCube", "polyPlane", "polySphere", "polyCylinder", "polyCone",
                           "polyTorus", "polyPyramid"}) {
    CAPTURE(type);
    dg::Node& shape = scene.make("mesh");
    dg::Node& maker = scene.make(type);
    REQUIRE(scene.graph().connect(maker.plug("output"), shape.plug("inMesh")));
    const std::uint64_t plain = mesh::hashMesh(scene.mesh(shape));
    CHECK(mesh::check(scene.mesh(shape)).empty());
    CHECK(scene.mesh(shape).faceCount() > 0);
    REQUIRE(scene.graph().set(maker.plug("subdivisionsHeight"), std::int64_t{5}));
    const std::uint64_t divided = mesh::hashMesh(scene.mesh(shape));
    CHECK(divided != plain);
    REQUIRE(scene.graph().setVec3(maker.plug("axis"), {1, 0, 0}));
    CHECK(mesh::hashMesh(scene.mesh(shape)) != divided);
    REQUIRE(scene.graph().set(maker.plug("subdivisionsHeight"), std::int64_t{0}));
    const auto failed = evaluatedMesh(shape);
    REQUIRE_FALSE(failed);
    CHECK(failed.error().message.find(maker.name()) != std::string::npos);
  }
}

TEST_CASE(
    "history: inserting a node keeps what is seen, moves tweaks in front, and undoes to the bit") {
  for (const bool withHistory : {false, true}) {
    CAPTURE(withHistory);
    RaiseScene scene;
    dg::Node& shape = withHistory ? scene.cubeWithHistory() : scene.cube();
    scene.set("pCubeShape1.pnts[2].pntx", 0.25);
    const std::vector<Vec3f> seen = scene.points(shape);
    const std::uint64_t before = scene->hash();
    scene::ChangeSet changes;
    {
      const scene::Journal::Scope scope(scene->journal(), &changes);
      scene.insert(shape, {0});
    }
    std::vector<Vec3f> expected = seen;
    expected[0].y += 1;
    CHECK(scene.points(shape) == expected);
    CHECK(scene.graph().elementCount(shape.plug("pnts")) == 0);
    CHECK(scene->nodesNamed("pCubeShape1Orig").size() == (withHistory ? 0 : 1));
    CHECK(scene.path("pCube1").shapes().size() == 1);
    const std::uint64_t after = scene->hash();
    REQUIRE(changes.undo());
    CHECK(scene->hash() == before);
    CHECK(scene.points(shape) == seen);
    REQUIRE(changes.redo());
    CHECK(scene->hash() == after);
    CHECK(scene.points(shape) == expected);
  }
}

TEST_CASE("history: deleting it bakes what is seen and leaves nothing behind") {
  RaiseScene scene;
  const std::size_t nodesBefore = scene.graph().nodes().size();
  dg::Node& shape = scene.cube();
  for (int i = 0; i < 3; ++i) {
    scene.insert(shape, {i});
    scene.set("pCubeShape1.pnts[5].pntz", 0.5 * i);
  }
  mesh::Mesh edited = scene.mesh(shape);
  edited.setEdgeSmooth(0, true);
  REQUIRE(setEvaluatedMesh(shape, edited));
  scene.insert(shape, {7});
  const std::uint64_t seen = mesh::hashMesh(scene.mesh(shape));
  const std::uint64_t before = scene->hash();
  scene::ChangeSet changes;
  {
    const scene::Journal::Scope scope(scene->journal(), &changes);
    REQUIRE(deleteHistory(*scene.document, shape));
  }
  CHECK(mesh::hashMesh(scene.mesh(shape)) == seen);
  CHECK_FALSE(hasHistory(shape));
  CHECK(scene.graph().nodes().size() == nodesBefore + 2);
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
  CHECK(mesh::hashMesh(scene.mesh(shape)) == seen);
}

TEST_CASE("history: a node that feeds another mesh as well survives the deletion of one history") {
  Scene scene;
  dg::Node& first = scene.cubeWithHistory("a");
  dg::Node& second = scene.make("mesh", "bShape");
  REQUIRE(scene.graph().connect(scene.plug("polyCube1.output"), second.plug("inMesh")));
  REQUIRE(deleteHistory(*scene.document, first));
  CHECK(hasHistory(second));
  CHECK(scene.mesh(second).faceCount() == 6);
  REQUIRE(scene->deleteNodes({scene.path("b").node()}));
  CHECK(scene->nodesNamed("polyCube1").empty());
}

TEST_CASE(
    "history: node state 1 passes through, components that are gone are skipped, failures say who "
    "and why") {
  RaiseScene scene;
  dg::Node& shape = scene.cubeWithHistory();
  const std::vector<Vec3f> plain = scene.points(shape);
  dg::Node& raise = scene.insert(shape, {0, 500});
  CHECK(scene.points(shape)[0].y == plain[0].y + 1);
  scene.set("raise1.nodeState", std::int64_t{1});
  CHECK(scene.points(shape) == plain);
  scene.set("raise1.nodeState", std::int64_t{0});
  REQUIRE(scene.graph().set(raise.plug("inputComponents"),
                            components(ComponentType::Vertex, {0, 1, 2, 3})));
  const auto failed = evaluatedMesh(shape);
  REQUIRE_FALSE(failed);
  CHECK(failed.error().message == "raise1: three vertices at most");
  REQUIRE(scene.graph().set(raise.plug("inputComponents"), components(ComponentType::Vertex, {})));
  CHECK(scene.points(shape) == plain);
}

TEST_CASE("history: tweak nodes add offsets to points and UVs, transformGeometry moves them all") {
  Scene scene;
  dg::Node& shape = scene.cubeWithHistory();
  dg::Node& tweak = scene.make("polyTweakUV");
  REQUIRE(
      insertHistoryNode(*scene.document, shape, tweak.plug("inputPolymesh"), tweak.plug("output")));
  const math::Vec2f uv = scene.mesh(shape).uvSet(0).points[1];
  scene.set("polyTweakUV1.uvtk[1].tv", 0.5);
  CHECK(scene.mesh(shape).uvSet(0).points[1].v == uv.v + 0.5f);
  CHECK(scene.mesh(shape).uvSet(0).points[1].u == uv.u);
  scene.set("polyTweakUV1.uvSetName", std::string("missing"));
  CHECK_FALSE(evaluatedMesh(shape));
  scene.set("polyTweakUV1.uvSetName", std::string());

  dg::Node& mover = scene.make("transformGeometry");
  REQUIRE(insertHistoryNode(*scene.document, shape, mover.plug("inputGeometry"),
                            mover.plug("outputGeometry")));
  const auto matrix = math::Matrix4::translation({2, 0, 0});
  scene.set("transformGeometry1.transform", dg::DataPtr(std::make_shared<dg::MatrixData>(matrix)));
  CHECK(scene.points(shape)[1].x == 2.5f);
  scene.set("transformGeometry1.invertTransform", std::int64_t{1});
  CHECK(scene.points(shape)[1].x == -1.5f);
}

TEST_CASE(
    "history: soft edges and deleted components follow their attributes and skip what is gone") {
  RaiseScene scene;
  dg::Node& shape = scene.cubeWithHistory();
  dg::Node& soft = scene.make("polySoftEdge");
  REQUIRE(scene.graph().set(soft.plug("inputComponents"),
                            components(ComponentType::Edge, {0, 1, 900})));
  REQUIRE(
      insertHistoryNode(*scene.document, shape, soft.plug("inputPolymesh"), soft.plug("output")));
  CHECK_FALSE(scene.mesh(shape).isEdgeSmooth(0));
  scene.set("polySoftEdge1.angle", 3.1415926535897932);
  CHECK(scene.mesh(shape).isEdgeSmooth(1));
  CHECK_FALSE(scene.mesh(shape).isEdgeSmooth(2));

  dg::Node& remover = scene.make("deleteComponent");
  const std::vector<Component> list = {Component(ComponentType::Face, {1, 77}),
                                       Component(ComponentType::Edge, {0})};
  scene.set("deleteComponent1.dc", dg::DataPtr(std::make_shared<scene::ComponentListData>(list)));
  REQUIRE(insertHistoryNode(*scene.document, shape, remover.plug("inputGeometry"),
                            remover.plug("outputGeometry")));
  CHECK(scene.mesh(shape).faceCount() == 4);  // the top goes, front and bottom become one
  CHECK(mesh::check(scene.mesh(shape)).empty());
  scene.set("deleteComponent1.nodeState", std::int64_t{1});
  CHECK(scene.mesh(shape).faceCount() == 6);
}
