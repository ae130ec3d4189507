#include <doctest/doctest.h>

#include "host/scene/dag_paths.h"
#include "tests/host/scene/scene_fixture.h"

using namespace host;
using namespace host::scene;
using namespace host::scene::test;

TEST_CASE("hierarchy: a shape without a parent gets a transform named after it") {
  Scene scene;
  Node& named = scene.make("mesh", "crateShape3");
  CHECK(dagLinks(named).parents.front()->name() == "crate3");
  Node& unnamed = scene.make("mesh", "");
  CHECK(firstPath(unnamed).fullName() == "|polySurface1|polySurfaceShape1");
}

TEST_CASE("hierarchy: cycles, shapes under the world and children of shapes are refused") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b", &a);
  Node& shape = scene.meshUnder("tri", 1);
  const std::uint64_t before = scene->hash();
  CHECK_FALSE(scene->reparent(firstPath(a), &a));
  CHECK_FALSE(scene->reparent(firstPath(a), &b));
  CHECK_FALSE(scene->reparent(firstPath(b), &a));
  CHECK_FALSE(scene->reparent(firstPath(b), &shape));
  CHECK_FALSE(scene->reparent(firstPath(shape), nullptr));
  CHECK_FALSE(scene->addInstance(a, &b));
  CHECK_FALSE(scene->removeInstance(firstPath(b)));
  CHECK_FALSE(scene->createNode("transform", "x", &shape));
  CHECK_FALSE(scene->createNode("value", "x", &a));
  CHECK(scene->hash() == before);
}

TEST_CASE("hierarchy: an instance has a path a parent, and outlives all but its last") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b");
  Node& shared = scene.transform("shared", &a);
  scene.transform("below", &shared);
  REQUIRE(scene->addInstance(shared, &b));
  CHECK(allPaths(scene.node("below")).size() == 2);
  CHECK(scene.path("b|shared|below").instanceNumber() == 1);
  CHECK(scene.path("b|shared").partialName() == "b|shared");
  CHECK(scene.path("shared").fullName() == "|a|shared");
  ChangeSet changes;
  const std::uint64_t before = scene->hash();
  {
    const Journal::Scope scope(scene->journal(), &changes);
    REQUIRE(scene->deleteNodes({&a}));
    CHECK(shared.isAlive());
    CHECK(firstPath(shared).fullName() == "|b|shared");
    REQUIRE(scene->deleteNodes({&b}));
    CHECK_FALSE(shared.isAlive());
  }
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
  CHECK(allPaths(scene.node("below")).size() == 2);
}

TEST_CASE("hierarchy: reorder moves among siblings and keeps the instance order") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b");
  Node& c = scene.transform("c");
  REQUIRE(scene->reorder(c, nullptr, 0));
  CHECK(scene->worldChildren() == std::vector<Node*>{&c, &a, &b});
  REQUIRE(scene->reorder(c, nullptr, 99));
  CHECK(scene->worldChildren() == std::vector<Node*>{&a, &b, &c});
  CHECK_FALSE(scene->reorder(c, &a, 0));
}

TEST_CASE("hierarchy: the matrix of a path ends where a transform does not inherit") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b", &a);
  Node& c = scene.transform("c", &b);
  for (Node* node : {&a, &b, &c}) {
    const auto matrix = math::Matrix4::translation({1, 0, 0});
    REQUIRE(scene->graph().set(node->plug("matrix"),
                               dg::DataPtr(std::make_shared<dg::MatrixData>(matrix))));
  }
  CHECK(firstPath(c).inclusiveMatrix()[3][0] == 3);
  CHECK(firstPath(c).exclusiveMatrix()[3][0] == 2);
  REQUIRE(scene->graph().set(b.plug("inheritsTransform"), std::int64_t{0}));
  CHECK(firstPath(c).inclusiveMatrix()[3][0] == 2);
  CHECK(firstPath(b).inclusiveMatrix()[3][0] == 1);
}

TEST_CASE("deletion: history that fed only what goes is taken along, other nodes are not") {
  Scene scene;
  dg::Graph& graph = scene->graph();
  Node& target = scene.transform("target");
  Node& survivor = scene.transform("survivor");
  Node& chain1 = scene.make("feeder", "chain1");
  Node& chain2 = scene.make("feeder", "chain2");
  Node& sharedFeeder = scene.make("feeder", "shared");
  Node& lasting = scene.make("value", "lasting");
  REQUIRE(graph.connect(chain1.plug("out"), chain2.plug("in")));
  REQUIRE(graph.connect(chain2.plug("out"), target.plug("height")));
  REQUIRE(graph.connect(lasting.plug("out"), chain1.plug("in")));
  Node& mid = scene.make("feeder", "mid");
  REQUIRE(graph.connect(sharedFeeder.plug("out"), mid.plug("in")));
  REQUIRE(graph.connect(sharedFeeder.plug("out"), survivor.plug("height")));
  const std::uint64_t before = scene->hash();
  ChangeSet changes;
  {
    const Journal::Scope scope(scene->journal(), &changes);
    REQUIRE(scene->deleteNodes({&target, &mid}));
  }
  CHECK_FALSE(chain1.isAlive());
  CHECK_FALSE(chain2.isAlive());
  CHECK(lasting.isAlive());
  CHECK(sharedFeeder.isAlive());
  const std::uint64_t after = scene->hash();
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
  REQUIRE(changes.redo());
  CHECK(scene->hash() == after);
}

TEST_CASE("deletion: a default or locked node stops it before anything is gone") {
  Scene scene;
  Node& first = scene.transform("first");
  Node& group = scene.transform("group");
  Node& locked = scene.transform("locked", &group);
  REQUIRE(scene->graph().setNodeLocked(locked, true));
  const auto refused = scene->deleteNodes({&first, &group});
  REQUIRE_FALSE(refused);
  CHECK(refused.error().message.find("locked") != std::string::npos);
  CHECK(first.isAlive());
  first.markDefault();
  CHECK_FALSE(scene->deleteNodes({&first}));
}

TEST_CASE(
    "hierarchy: paths of a deep hierarchy are made, compared, kept and let go one step at a time") {
  constexpr std::size_t kDeep = 100'000;
  Scene scene;
  Node* leaf = &scene.transform("top");
  for (std::size_t i = 1; i < kDeep; ++i) leaf = &scene.transform("n", leaf);
  const DagPath path = firstPath(*leaf);
  CHECK(path.length() == kDeep);
  CHECK(path.isValid());
  CHECK(path.nodes().front()->name() == "top");
  std::vector<DagPath> all;
  for (PathWalk walk(firstPath(scene.node("top"))); !walk.isDone(); walk.next())
    all.push_back(walk.path());
  REQUIRE(all.size() == kDeep);
  CHECK(all.back() == path);
  CHECK(all.front().isAncestorOf(path));
  CHECK_FALSE(path.isAncestorOf(all.front()));
  REQUIRE(scene->deleteNodes({&scene.node("top")}));
  CHECK_FALSE(path.isValid());
  CHECK(path.node()->name() == "n");  // kept by the path alone
}

TEST_CASE("hierarchy: a path tells whether it holds, whatever has become of those above it") {
  Scene scene;
  Node& a = scene.transform("a");
  Node& b = scene.transform("b", &a);
  Node& c = scene.transform("c", &b);
  Node& other = scene.transform("other");
  const DagPath before = firstPath(c);
  REQUIRE(scene->reparent(firstPath(b), &other));
  CHECK_FALSE(before.isValid());
  CHECK(firstPath(c).fullName() == "|other|b|c");
  REQUIRE(scene->reparent(firstPath(b), &a));
  CHECK(before.isValid());
  CHECK(before == firstPath(c));  // another way of the same nodes
  REQUIRE(scene->addInstance(b, &other));
  const std::vector<DagPath> both = allPaths(c);
  REQUIRE(both.size() == 2);
  CHECK(both[0] == before);
  CHECK_FALSE(both[1] == both[0]);
  CHECK(both[1].parent().child(&c) == both[1]);
  CHECK(both[1].instanceNumber() == 1);
  REQUIRE(scene->removeInstance(both[0].parent()));
  CHECK_FALSE(both[0].isValid());
  CHECK(firstPath(c) == both[1]);
}

namespace {

/// Deletes one node as soon as another is about to go.
struct DeletesAlong final : dg::GraphObserver {
  DeletesAlong(Document& documentIn, Node& watchedIn, Node& alsoIn)
      : document(documentIn), watched(watchedIn), also(alsoIn) {
    document.graph().addObserver(this);
  }
  ~DeletesAlong() override { document.graph().removeObserver(this); }
  void nodeAboutToBeRemoved(Node& node) override {
    if (&node == &watched && also.isAlive()) (void)document.deleteNodes({&also});
  }
  Document& document;
  Node &watched, &also;
};

}  // namespace

TEST_CASE("deletion: who watches may delete the other parent of what hangs below") {
  Scene scene;
  Node& shape = scene.meshUnder("shown", 1);
  Node& shown = scene.node("shown");
  Node& extra = scene.make("mesh", "hidden", &shown);
  Node& second = scene.transform("second");
  REQUIRE(scene->addInstance(shape, &second));
  ChangeSet changes;
  const std::uint64_t before = scene->hash();
  {
    const DeletesAlong watcher(*scene.document, extra, second);
    const Journal::Scope scope(scene->journal(), &changes);
    REQUIRE(scene->deleteNodes({&shown}));
  }
  CHECK_FALSE(second.isAlive());
  CHECK_FALSE(shape.isAlive());
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
}
