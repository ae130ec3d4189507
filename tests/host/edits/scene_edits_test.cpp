#include <doctest/doctest.h>

#include "host/edits/duplicate.h"
#include "host/edits/hierarchy.h"
#include "host/edits/remove.h"
#include "host/edits/select.h"
#include "host/edits/time.h"
#include "tests/host/nodes/nodes_fixture.h"

namespace host::edits {
namespace {

using nodes::test::Names;
using nodes::test::Scene;

bool exists(Scene& scene, std::string_view name) {
  return !scene->findNodes(name).empty();
}

TEST_CASE("remove: an object and components of it selected together go, and leave no history") {
  Scene scene;
  scene.cube("box");
  scene.cube("other");
  auto list = scene.list("box");
  list.merge(scene.list("box.f[0:1]"));
  list.merge(scene.list("other.f[2]"));
  scene->setSelection(list);
  REQUIRE(remove(*scene.document, scene->selection()));
  CHECK_FALSE(exists(scene, "box"));
  CHECK_FALSE(exists(scene, "boxShape*"));
  CHECK(scene.mesh(*scene.path("other").toShape().node()).faceCount() == 5);
  CHECK(scene->findNodes("deleteComponent*").size() == 1);
}

TEST_CASE("remove: of instances only the named one; the last one takes the node along") {
  Scene scene;
  dg::Node& shape = scene.cube("box");
  dg::Node& copy = scene.make("transform", "copy");
  REQUIRE(scene->addInstance(shape, &copy));
  scene::SelectionList list;
  list.add(scene.path("copy").child(&shape));
  REQUIRE(remove(*scene.document, list));
  CHECK(shape.isAlive());
  CHECK(scene::allPaths(shape).size() == 1);
  // Components of two instances of one mesh are one deletion.
  REQUIRE(scene->addInstance(shape, &copy));
  scene::SelectionList faces;
  faces.add(scene.path("box"), scene::Component(scene::ComponentType::Face, {0}));
  faces.add(scene.path("copy"), scene::Component(scene::ComponentType::Face, {0, 1}));
  const auto names = removeComponents(*scene.document, faces);
  REQUIRE(names);
  CHECK(names->size() == 1);
  CHECK(scene.mesh(shape).faceCount() == 4);
}

TEST_CASE("remove: what can't go is named, and nothing else has gone") {
  Scene scene;
  scene.cube("box");
  auto list = scene.list("box.f[0]");
  list.merge(scene.list("persp"));
  const std::uint64_t before = scene->hash();
  const auto refused = remove(*scene.document, list);
  REQUIRE_FALSE(refused);
  CHECK(refused.error().message.find("persp") != std::string::npos);
  CHECK(scene->hash() == before);
  const auto uvs = remove(*scene.document, scene.list("box.map[0]"));
  REQUIRE_FALSE(uvs);
  CHECK(uvs.error().message ==
        "'box.map[0]' can't be deleted: only vertices, edges and faces can.");
}

TEST_CASE("removeHistory: reaches below groups, and lists that are the selection may shrink") {
  Scene scene;
  dg::Node& shape = scene.cubeWithHistory("box");
  REQUIRE(scene->reparent(scene.path("box"), &scene.make("transform", "group")));
  scene->setSelection(scene.list("group"));
  const auto points = scene.points(shape);
  REQUIRE(removeHistory(*scene.document, scene->selection()));
  CHECK_FALSE(nodes::hasHistory(shape));
  CHECK(scene.points(shape) == points);
}

TEST_CASE("duplicate: copies get numbers of their own, shapes can be shared") {
  Scene scene;
  scene.cubeWithHistory("box1");
  REQUIRE(scene->reparent(scene.path("box1"), &scene.make("transform", "group1")));
  const auto copies = duplicate(*scene.document, scene.list("group1"), {.renamesChildren = true});
  REQUIRE(copies);
  REQUIRE(copies->size() == 1);
  CHECK(copies->front().node->name() == "group2");
  REQUIRE(copies->front().below.size() == 1);
  CHECK(copies->front().below.front()->name() == "box2");
  CHECK(scene->selection().names() == Names{"group2"});
  CHECK_FALSE(nodes::hasHistory(*scene.path("box2").toShape().node()));

  const auto shared = duplicate(*scene.document, scene.list("box1"),
                                {.name = "twin", .sharesShapes = true, .selects = false});
  REQUIRE(shared);
  CHECK(scene.path("twin").toShape().node() == scene.path("box1").toShape().node());
  CHECK(scene->selection().names() == Names{"group2"});
}

TEST_CASE("instance: what is below appears once more, and lists of other nodes are refused whole") {
  Scene scene;
  dg::Node& shape = scene.cube("box");
  const auto made = instance(*scene.document, scene.list("box"));
  REQUIRE(made);
  CHECK(made->front()->name() == "box1");
  CHECK(scene::allPaths(shape).size() == 2);
  auto list = scene.list("box");
  list.merge(scene.list("initialShadingGroup"));
  const std::uint64_t before = scene->hash();
  CHECK_FALSE(instance(*scene.document, list));
  CHECK(scene->hash() == before);
}

TEST_CASE("group and ungroup: members stay where they are, the pivot is their middle") {
  Scene scene;
  scene.cube("a");
  scene.cube("b");
  dg::Node& above = scene.make("transform", "above");
  scene.setVec3("above.scale", {2, -1, 3});
  scene.setVec3("above.rotate", {0.3, 0.8, 0.1});
  scene.setVec3("a.translate", {1, 0, 0});
  scene.setVec3("b.translate", {5, 0, 0});
  REQUIRE(group(*scene.document, {scene.path("a"), scene.path("b")}, {.name = "flat"}));
  CHECK(scene.real("flat.rotatePivotX") == doctest::Approx(3));
  CHECK(scene.real("flat.scalePivotX") == doctest::Approx(3));
  REQUIRE(ungroup(*scene.document, scene.path("flat")));
  const math::Matrix4 placeOfA = scene.path("a").inclusiveMatrix();
  const auto made = group(*scene.document, {scene.path("a"), scene.path("b")},
                          {.name = "pair", .parent = &above});
  REQUIRE(made);
  const math::Matrix4 now = scene.path("a").inclusiveMatrix();
  for (int i = 0; i < 16; ++i)
    CHECK(now.m[i / 4][i % 4] == doctest::Approx(placeOfA.m[i / 4][i % 4]));
  CHECK(scene->selection().names() == Names{"pair"});

  const auto freed = ungroup(*scene.document, scene.path("pair"), true);
  REQUIRE(freed);
  CHECK(freed->size() == 2);
  CHECK_FALSE(exists(scene, "pair"));
  const math::Matrix4 last = scene.path("a").inclusiveMatrix();
  for (int i = 0; i < 16; ++i)
    CHECK(last.m[i / 4][i % 4] == doctest::Approx(placeOfA.m[i / 4][i % 4]));
  const auto refused = ungroup(*scene.document, scene.path("a"));
  REQUIRE_FALSE(refused);
  CHECK(refused.error().message == "ungroup: 'a' is no group.");

  // Under a scale of zero nothing keeps its place: it stays where it was.
  scene.setVec3("above.scale", {1, 0, 1});
  const std::uint64_t before = scene->hash();
  CHECK_FALSE(reparent(*scene.document, scene.path("a"), &above));
  CHECK(scene->hash() == before);
  CHECK_FALSE(group(*scene.document, {scene.path("a")}, {.parent = &above}));
  CHECK(scene->hash() == before);
}

TEST_CASE("select: whole objects end the work on components, other changes don't") {
  Scene scene;
  scene.cube("box");
  scene.cube("other");
  hilite(*scene.document, scene.list("box.vtx[0]"));
  CHECK(scene->hilite().names() == Names{"box"});
  select(*scene.document, scene.list("box.vtx[0:2]"));
  CHECK_FALSE(scene->hilite().isEmpty());
  select(*scene.document, scene.list("other"), SelectHow::AddFirst);
  CHECK(scene->selection().names() == Names{"other", "box.vtx[0:2]"});
  select(*scene.document, scene.list("box.vtx[1:3]"), SelectHow::Toggle);
  CHECK(scene->selection().names() == Names{"other", "box.vtx[0]", "box.vtx[3]"});
  select(*scene.document, scene.list("other"), SelectHow::Remove);
  CHECK_FALSE(scene->hilite().isEmpty());
  select(*scene.document, scene.list("other"));
  CHECK(scene->hilite().isEmpty());
}

TEST_CASE("expandSets: members of sets in sets, each once") {
  Scene scene;
  scene.cube("box");
  dg::Node& inner = scene.make("objectSet", "inner");
  dg::Node& outer = scene.make("objectSet", "outer");
  REQUIRE(nodes::addToSet(*scene.document, inner, scene.list("box.f[1:2]")));
  REQUIRE(nodes::addToSet(*scene.document, outer, scene.list("inner")));
  REQUIRE(nodes::addToSet(*scene.document, outer, scene.list("box.f[2:3]")));
  CHECK(expandSets(scene.list("outer")).names() == Names{"box.f[1:3]"});
}

TEST_CASE("the current time is kept in seconds, and a scene without a clock says so") {
  Scene scene;
  REQUIRE(setCurrentTime(*scene.document, 2.5));
  CHECK(*currentTime(*scene.document) == 2.5);
}

}  // namespace
}  // namespace host::edits
