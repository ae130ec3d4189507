#include <doctest/doctest.h>

#include <random>

#include "tests/host/scene/scene_fixture.h"

using namespace host;
using namespace host::scene;
using namespace host::scene::test;

TEST_CASE("selection: several component types of one mesh are one item, the object another") {
  Scene scene;
  scene.meshUnder("tri", 4);
  SelectionList list;
  list.add(scene.path("tri"), Component(ComponentType::Vertex, {0, 2}));
  list.add(scene.path("triShape"), Component(ComponentType::Face, {1}));
  list.add(scene.path("tri"), Component(ComponentType::Vertex, {1}));
  CHECK(list.length() == 1);
  CHECK(list.names() == Names{"tri.vtx[0:2]", "tri.f[1]"});
  list.add(scene.path("tri"));
  list.add(scene.path("tri"));
  CHECK(list.length() == 2);
  CHECK(list.names(true).back() == "|tri");
}

TEST_CASE("selection: toggling and removing work component by component") {
  Scene scene;
  scene.meshUnder("tri", 4);
  const auto of = [&](const char* pattern) { return *scene->resolve(pattern); };
  SelectionList list = of("tri.f[0:2]");
  list.merge(of("tri.f[2:3]"), SelectionMerge::Toggle);
  CHECK(list.names() == Names{"tri.f[0:1]", "tri.f[3]"});
  list.merge(of("tri.f[*]"), SelectionMerge::Toggle);
  CHECK(list.names() == Names{"tri.f[2]"});
  list.merge(of("tri.f[*]"));
  list.merge(of("tri.f[1]"), SelectionMerge::Remove);
  CHECK(list.names() == Names{"tri.f[0]", "tri.f[2:3]"});
  list.merge(of("tri.f[*]"), SelectionMerge::Remove);
  CHECK(list.isEmpty());
  list.merge(of("tri"), SelectionMerge::Toggle);
  CHECK(list.names() == Names{"tri"});
  list.merge(of("tri"), SelectionMerge::Toggle);
  CHECK(list.isEmpty());
}

TEST_CASE("selection: a long list agrees with a slow one under random merges") {
  Scene scene;
  std::vector<SelectionItem> pool;
  for (int i = 0; i < 60; ++i) {
    SelectionList one;
    one.add(firstPath(scene.transform("t#")));
    pool.push_back(one.items().front());
  }
  std::mt19937 random(3);
  SelectionList list;
  std::vector<const Node*> slow;
  for (int step = 0; step < 3000; ++step) {
    const SelectionItem& item = pool[random() % pool.size()];
    const auto how = static_cast<SelectionMerge>(random() % 3);
    list.merge(item, how);
    const auto at = std::find(slow.begin(), slow.end(), item.node.get());
    if (at != slow.end() && how != SelectionMerge::Add)
      slow.erase(at);
    else if (at == slow.end() && how != SelectionMerge::Remove)
      slow.push_back(item.node.get());
    REQUIRE(list.length() == slow.size());
  }
  for (std::size_t i = 0; i < slow.size(); ++i) CHECK(list.items()[i].node.get() == slow[i]);
}

TEST_CASE("selection: what is deleted leaves the selection and comes back with undo") {
  Scene scene;
  Node& group = scene.transform("group");
  scene.transform("inner", &group);
  scene.meshUnder("tri", 2);
  SelectionList list = *scene->resolveAll({"inner", "tri.f[0]"});
  scene->setSelection(list);
  ChangeSet changes;
  {
    const Journal::Scope scope(scene->journal(), &changes);
    REQUIRE(scene->deleteNodes({&group}));
  }
  CHECK(scene->selection().names() == Names{"tri.f[0]"});
  REQUIRE(changes.undo());
  CHECK(scene->selection() == list);
}

TEST_CASE("selection: a path whose parent is gone from memory is seen to be broken") {
  Scene scene;
  Node& parent = scene.transform("parent");
  const dg::NodePtr child = scene.transform("child", &parent).shared_from_this();
  const DagPath path = firstPath(*child);
  REQUIRE(path.isValid());
  REQUIRE(scene->deleteNodes({&parent}));  // nothing recorded: the parent is freed
  CHECK_FALSE(path.isValid());
}
