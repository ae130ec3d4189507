#include <doctest/doctest.h>

#include <random>

#include "host/scene/selection_algebra.h"
#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;

namespace {

scene::SelectionItem item(Scene& scene, std::string_view pattern) {
  return scene.list(pattern).items().front();
}

dg::Node& shadingGroup(Scene& scene, std::string_view name) {
  dg::Node& group = scene.make("shadingEngine", name);
  scene.set(group.name() + ".renderableOnlySet", std::int64_t{1});
  const dg::Plug sets = scene.plug("renderPartition.sets");
  REQUIRE(scene.graph().connect(group.plug("partition"),
                                sets.element(scene.graph().nextFreeIndex(sets))));
  return group;
}

}  // namespace

TEST_CASE("sets: objects, components and other nodes go in, show as members and come out") {
  Scene scene;
  scene.cube();
  dg::Node& set = scene.make("objectSet", "set1");
  dg::Node& material = scene.make("lambert", "mat");
  const std::uint64_t before = scene->hash();
  scene::ChangeSet changes;
  {
    const scene::Journal::Scope scope(scene->journal(), &changes);
    for (const char* pattern : {"pCube1.f[1:2]", "persp", "mat", "pCube1.vtx[0]", "pCube1.f[4]"})
      REQUIRE(addToSet(*scene.document, set, scene.list(pattern)));
  }
  scene::SelectionList members = setMembers(set);
  CHECK(members.length() == 3);
  CHECK(isSetMember(set, item(scene, "pCube1.f[1]")));
  CHECK(isSetMember(set, item(scene, "pCube1.vtx[0]")));
  CHECK_FALSE(isSetMember(set, item(scene, "pCube1.f[1:3]")));
  CHECK_FALSE(isSetMember(set, item(scene, "pCube1")));
  CHECK(isSetMember(set, item(scene, "persp")));
  CHECK(setsOf(*scene.document, item(scene, "mat")) == std::vector<dg::Node*>{&set});
  const std::uint64_t after = scene->hash();
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
  CHECK(setMembers(set).isEmpty());
  REQUIRE(changes.redo());
  CHECK(scene->hash() == after);
  REQUIRE(removeFromSet(*scene.document, set, scene.list("pCube1.f[1]")));
  CHECK(isSetMember(set, item(scene, "pCube1.f[2]")));
  CHECK_FALSE(isSetMember(set, item(scene, "pCube1.f[1]")));
  REQUIRE(scene->deleteNodes({&material}));
  CHECK(setMembers(set).length() == 2);
  REQUIRE(clearSet(*scene.document, set));
  CHECK(setMembers(set).isEmpty());
  CHECK(scene->findNodes("groupId*").empty());
}

TEST_CASE("sets: a face is in one shading group; assigning it takes it from the other") {
  Scene scene;
  dg::Node& shape = scene.cube();
  dg::Node& initial = *scene->nodesNamed("initialShadingGroup").front();
  REQUIRE(assignInitialShading(*scene.document, shape));
  CHECK(setMembers(initial).names() == Names{"pCubeShape1"});
  dg::Node& red = shadingGroup(scene, "redSG");
  REQUIRE(addToSet(*scene.document, red, scene.list("pCube1.f[0:1]")));
  CHECK(setMembers(red).names() == Names{"pCube1.f[0:1]"});
  CHECK(setMembers(initial).names() == Names{"pCube1.f[2:5]"});
  CHECK_FALSE(addToSet(*scene.document, red, scene.list("pCube1.f[2]"), false));
  CHECK_FALSE(addToSet(*scene.document, red, scene.list("pCube1.vtx[2]")));
  CHECK_FALSE(addToSet(*scene.document, red, scene.list("time1")));
  REQUIRE(addToSet(*scene.document, red, scene.list("pCube1")));
  CHECK(setMembers(red).names() == Names{"pCubeShape1"});
  CHECK(setMembers(initial).isEmpty());
  CHECK(scene->findNodes("groupId*").empty());
  // Plain sets share as they like.
  dg::Node& plain = scene.make("objectSet", "plain");
  REQUIRE(addToSet(*scene.document, plain, scene.list("pCube1.f[0]")));
  CHECK(isSetMember(red, item(scene, "pCubeShape1")));
}

TEST_CASE("sets: a deleted set or object leaves no trace in the other and undo brings both back") {
  Scene scene;
  scene.cube();
  dg::Node& set = scene.make("objectSet", "set1");
  REQUIRE(addToSet(*scene.document, set, scene.list("pCube1.f[1:2]")));
  REQUIRE(addToSet(*scene.document, set, scene.list("pCube1")));
  const std::uint64_t before = scene->hash();
  for (const char* victim : {"set1", "pCube1"}) {
    CAPTURE(victim);
    scene::ChangeSet changes;
    {
      const scene::Journal::Scope scope(scene->journal(), &changes);
      REQUIRE(scene->deleteNodes({*scene->node(victim)}));
    }
    if (set.isAlive()) CHECK(setMembers(set).isEmpty());
    REQUIRE(changes.undo());
    CHECK(scene->hash() == before);
    CHECK(setMembers(set).length() == 2);
  }
}

TEST_CASE("sets: algebra over lists works component by component") {
  Scene scene;
  scene.cube();
  scene::SelectionList a = scene.list("pCube1.f[0:3]"), b = scene.list("pCube1.f[2:5]");
  a.merge(scene.list("persp"));
  CHECK(scene::unionOf(a, b).names() == Names{"pCube1.f[0:5]", "persp"});
  CHECK(scene::differenceOf(a, b).names() == Names{"pCube1.f[0:1]", "persp"});
  CHECK(scene::intersectionOf(a, b).names() == Names{"pCube1.f[2:3]"});
}

TEST_CASE("sets: random membership agrees with a table, and undo takes all of it back") {
  Scene scene;
  scene.cube();
  std::vector<dg::Node*> groups = {scene->nodesNamed("initialShadingGroup").front(),
                                   &shadingGroup(scene, "aSG"), &shadingGroup(scene, "bSG")};
  std::vector<int> owner(6, -1);
  std::mt19937 random(5);
  std::vector<std::unique_ptr<scene::ChangeSet>> history;
  std::vector<std::uint64_t> hashes = {scene->hash()};
  for (int step = 0; step < 60; ++step) {
    history.push_back(std::make_unique<scene::ChangeSet>());
    const scene::Journal::Scope scope(scene->journal(), history.back().get());
    const int group = static_cast<int>(random() % 3);
    const bool isWhole = random() % 8 == 0;
    const int face = static_cast<int>(random() % 6);
    const std::string pattern = isWhole ? "pCube1" : "pCube1.f[" + std::to_string(face) + "]";
    dg::Node& set = *groups[static_cast<std::size_t>(group)];
    const bool adds = random() % 3 != 0;
    REQUIRE((adds ? addToSet(*scene.document, set, scene.list(pattern))
                  : removeFromSet(*scene.document, set, scene.list(pattern))));
    for (int f = 0; f < 6; ++f) {
      if (!isWhole && f != face) continue;
      int& own = owner[static_cast<std::size_t>(f)];
      if (adds)
        own = group;
      else if (own == group)
        own = -1;
    }
    for (int f = 0; f < 6; ++f)
      for (int g = 0; g < 3; ++g)
        REQUIRE(isSetMember(*groups[static_cast<std::size_t>(g)],
                            item(scene, "pCube1.f[" + std::to_string(f) + "]")) ==
                (owner[static_cast<std::size_t>(f)] == g));
    hashes.push_back(scene->hash());
  }
  for (std::size_t i = history.size(); i-- > 0;) {
    REQUIRE(history[i]->undo());
    REQUIRE(scene->hash() == hashes[i]);
  }
}
