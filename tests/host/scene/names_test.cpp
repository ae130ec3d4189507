#include <doctest/doctest.h>

#include <chrono>

#include "tests/host/scene/scene_fixture.h"

using namespace host;
using namespace host::scene;
using namespace host::scene::test;

TEST_CASE("names: a taken name gets the next free number") {
  Scene scene;
  CHECK(scene.transform("pCube").name() == "pCube");
  CHECK(scene.transform("pCube").name() == "pCube1");
  CHECK(scene.transform("pCube1").name() == "pCube2");
  CHECK(scene.transform("pCube#").name() == "pCube3");
  CHECK(scene.transform("row01").name() == "row01");
  CHECK(scene.transform("row01").name() == "row02");
  REQUIRE(scene->deleteNodes({&scene.node("pCube2")}));
  CHECK(scene.transform("pCube#").name() == "pCube2");
  CHECK(scene.make("transform", "").name() == "transform1");
  CHECK(scene.make("value", "").name() == "value1");
}

TEST_CASE("names: siblings and nodes outside the hierarchy never share one, cousins may") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b");
  CHECK(scene.transform("leaf", &a).name() == "leaf");
  CHECK(scene.transform("leaf", &b).name() == "leaf");
  CHECK(scene.transform("leaf", &a).name() == "leaf1");
  CHECK(scene.make("value", "leaf").name() == "leaf2");
  CHECK(scene.transform("leaf2", &a).name() == "leaf3");
  // Moving in with a sibling of the same name renames the newcomer.
  REQUIRE(scene->reparent(scene.path("|b|leaf"), &a));
  CHECK(dagLinks(a).children.back()->name() == "leaf4");
}

TEST_CASE("names: illegal characters are replaced, and a name without a legal one is refused") {
  Scene scene;
  CHECK(scene.transform("my cube-1").name() == "my_cube_1");
  CHECK(scene.transform("3d").name() == "_3d");
  CHECK(scene.transform("set:part").name() == "set:part");
  Node& node = scene.transform("x");
  CHECK_FALSE(scene->rename(node, ""));
  CHECK_FALSE(scene->createNode("noSuchType"));
  CHECK(scene->createNode("noSuchType").error().message.find("noSuchType") != std::string::npos);
  CHECK_FALSE(scene->createNode("dagNode"));
}

TEST_CASE("names: renaming a transform takes along the shape named after it") {
  Scene scene;
  Node& shape = scene.meshUnder("pCube", 1);
  REQUIRE(scene->rename(scene.node("pCube"), "crate7"));
  CHECK(shape.name() == "crateShape7");
  CHECK(*scene->rename(scene.node("crate7"), "crate7") == "crate7");
  REQUIRE(scene->rename(shape, "other"));
  REQUIRE(scene->rename(scene.node("crate7"), "box"));
  CHECK(shape.name() == "other");
}

TEST_CASE("names: paths, wildcards and namespaces find what they say") {
  Scene scene;
  Node& group = scene.transform("group1");
  scene.transform("pCube1", &group);
  scene.transform("pCube2", &group);
  scene.transform("pCube1");
  scene.transform("ns:pCube3");
  CHECK(scene.resolved("|pCube1") == Names{"|pCube1"});
  CHECK(scene.resolved("group1|pCube1") == Names{"group1|pCube1"});
  CHECK(scene.resolved("|group1|pCube?") == Names{"group1|pCube1", "pCube2"});
  CHECK(scene.resolved("group*|*2") == Names{"pCube2"});
  CHECK(scene.resolved("pCube*") == Names{"group1|pCube1", "pCube2", "|pCube1"});
  CHECK(scene.resolved("ns:*") == Names{"ns:pCube3"});
  CHECK(scene.resolved("*:*") == Names{"ns:pCube3"});
  CHECK(scene.resolved(":group1") == Names{"group1"});
  CHECK(scene->node("pCube1").error().message == "More than one object matches name: pCube1");
  CHECK(scene->node("nothing").error().message == "No object matches name: nothing");
  CHECK_FALSE(scene->node("|pCube2"));
  CHECK(scene.path("|group1|pCube1").fullName() == "|group1|pCube1");
}

TEST_CASE("names: a partial path is the shortest that comes back to the same node") {
  Scene scene;
  std::vector<Node*> level = {nullptr};
  for (int depth = 0; depth < 3; ++depth) {
    std::vector<Node*> next;
    for (Node* parent : level)
      for (const char* name : {"a", "b"}) next.push_back(&scene.transform(name, parent));
    level = next;
  }
  for (const dg::NodePtr& node : scene->graph().nodes()) {
    const DagPath path = firstPath(*node);
    const std::string partial = path.partialName();
    CAPTURE(partial);
    const auto found = scene->findNodes(partial);
    // Only the name of a node of the top level, written with its bar, has nothing shorter.
    REQUIRE(found.size() == 1);
    CHECK(found.front() == node.get());
  }
}

TEST_CASE("names: components and plugs resolve through the transform, ranges are cut to the mesh") {
  Scene scene;
  scene.meshUnder("tri", 2);  // 6 vertices, 6 edges, 2 faces
  CHECK(scene.resolved("tri.vtx[4:99]") == Names{"tri.vtx[4:5]"});
  CHECK(scene.resolved("triShape.f[*]") == Names{"tri.f[*]"});
  CHECK(scene.resolved("tri.vtxFace[0:4][1]") == Names{"tri.vtxFace[3][1]", "tri.vtxFace[4][1]"});
  CHECK(scene.resolved("tri.h") == Names{"tri.height"});
  CHECK(scene.resolved("tri.outMesh") == Names{"triShape.outMesh"});
  for (const char* name : {"tri.vtx[6]", "tri.f[2:9]", "tri.map[0]", "tri.vtx[x]", "tri.noSuch",
                           "tri.vtx[0", "no.vtx[0]"})
    CHECK_FALSE(scene->resolve(name));
  CHECK(scene->plug("tri.height"));
  CHECK_FALSE(scene->plug("tri"));
  // A second shape is reached by its own name only.
  Node& second = scene.make("mesh", "more", &scene.node("tri"));
  CHECK(scene->graph().set(second.plug("outMesh"),
                           scene->graph().stored(scene.node("triShape").plug("outMesh"))));
  CHECK(scene.resolved("more.f[0]") == Names{"more.f[0]"});
  CHECK(scene.resolved("tri.f[0]") == Names{"triShape.f[0]"});
}

TEST_CASE("names: creating and finding stays constant time in a large scene") {
  Scene scene;
  const auto run = [&](int count) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) scene.transform("pCube");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  };
  run(2000);
  const double first = run(10000);
  run(20000);
  const double later = run(10000);
  CHECK(later < 8 * first + 0.05);
  CHECK(scene->nodesNamed("pCube41999").size() == 1);
}
