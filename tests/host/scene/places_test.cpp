// Nodes that stand in many places: what is counted, numbered and named without a list of them,
// against lists.

#include <doctest/doctest.h>

#include <random>

#include "host/scene/dag_paths.h"
#include "tests/host/scene/scene_fixture.h"

namespace host::scene {

namespace {

using test::Scene;

/// Every path to a node, in the order of its parents and of theirs.
std::vector<std::vector<Node*>> listed(Node& node) {
  std::vector<std::vector<Node*>> paths;
  for (Node* parent : dagLinks(node).parents) {
    if (!parent) {
      paths.push_back({&node});
      continue;
    }
    for (std::vector<Node*> above : listed(*parent)) {
      above.push_back(&node);
      paths.push_back(std::move(above));
    }
  }
  return paths;
}

void checkPlaces(Scene& scene, Node& node) {
  const std::vector<std::vector<Node*>> expected = listed(node);
  REQUIRE(pathCount(node) == expected.size());
  const std::vector<DagPath> paths = allPaths(node);
  REQUIRE(paths.size() == expected.size());
  for (std::size_t i = 0; i < paths.size(); ++i) {
    REQUIRE(paths[i].nodes() == expected[i]);
    REQUIRE(paths[i].isValid());
    REQUIRE(pathNumber(paths[i]) == i);
    REQUIRE(pathAt(node, i) == paths[i]);
    const auto found = scene->dagPath(paths[i].fullName());
    REQUIRE(found);
    REQUIRE(*found == paths[i]);
    const auto shortest = scene->resolve(paths[i].partialName());
    REQUIRE(shortest);
    REQUIRE(shortest->items().front().path == paths[i]);
  }
  CHECK(pathAt(node, expected.size()).isWorld());
}

}  // namespace

TEST_CASE("places: counts, numbers and names follow every edit of the hierarchy") {
  std::mt19937 random(7);
  const auto pick = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  for (int round = 0; round < 12; ++round) {
    Scene scene;
    std::vector<Node*> nodes;
    for (int i = 0; i < 9; ++i) nodes.push_back(&scene.transform("n" + std::to_string(i)));
    for (int step = 0; step < 60; ++step) {
      Node& child = *nodes[pick(nodes.size())];
      Node* parent = pick(4) == 0 ? nullptr : nodes[pick(nodes.size())];
      const std::size_t paths = listed(child).size();
      if (paths > 40) break;
      switch (pick(3)) {
        case 0:
          (void)scene->addInstance(child, parent);
          break;
        case 1:
          (void)scene->reparent(pathAt(child, pick(paths)), parent);
          break;
        default:
          (void)scene->removeInstance(pathAt(child, pick(paths)));
      }
      // Some are asked about between edits, others only after several.
      Node& asked = *nodes[pick(nodes.size())];
      REQUIRE(pathCount(asked) == listed(asked).size());
    }
    for (Node* node : nodes)
      if (listed(*node).size() < 200) checkPlaces(scene, *node);
  }
}

TEST_CASE("places: a node under very many parents is found by name, number and selection") {
  Scene scene;
  Node& shape = scene.meshUnder("first", 1);
  constexpr std::size_t kPlaces = 300;
  for (std::size_t i = 1; i < kPlaces; ++i)
    REQUIRE(scene->addInstance(shape, &scene.transform("at" + std::to_string(i))));
  checkPlaces(scene, shape);

  SelectionList list;
  for (const DagPath& path : allPaths(shape)) list.add(path);
  for (const DagPath& path : allPaths(shape)) list.add(path);
  CHECK(list.length() == kPlaces);
  SelectionItem third;
  third.path = pathAt(shape, 2);
  third.node = shape.shared_from_this();
  list.merge(third, SelectionMerge::Toggle);
  CHECK(list.length() == kPlaces - 1);

  SUBCASE("the first goes: the second is the first") {
    REQUIRE(scene->deleteNodes({&scene.node("first")}));
    CHECK(firstPath(shape).fullName() == "|at1|firstShape");
    checkPlaces(scene, shape);
  }
  SUBCASE("all go, last the shape") {
    std::vector<Node*> all = dagLinks(shape).parents;
    REQUIRE(scene->deleteNodes(all));
    CHECK_FALSE(shape.isAlive());
  }
  SUBCASE("all but one go") {
    std::vector<Node*> all = dagLinks(shape).parents;
    all.erase(all.begin() + 7);
    REQUIRE(scene->deleteNodes(all));
    CHECK(shape.isAlive());
    checkPlaces(scene, shape);
  }
}

TEST_CASE("places: those of nested instances share one budget and are counted past any list") {
  Scene scene;
  Node* below = &scene.transform("leaf");
  for (int level = 0; level < 70; ++level) {
    Node& above = scene.transform("group" + std::to_string(level));
    for (const char* side : {"left", "right"}) {
      Node& way = scene.transform(side + std::to_string(level));
      REQUIRE(scene->reparent(firstPath(way), &above));
      REQUIRE(scene->addInstance(*below, &way));
    }
    REQUIRE(scene->removeInstance(DagPath({below})));
    below = &above;
  }
  const std::uint64_t most = std::uint64_t{1} << 62;
  CHECK(pathCount(scene.node("leaf")) == most);
  CHECK(pathCount(scene.node("group9")) == std::uint64_t{1} << 60);

  PlaceBudget budget(100);
  std::size_t met = 0;
  for (int i = 0; i < 2; ++i)
    for (PathWalk walk(DagPath({below}), PathWalk::Children::InOrder, &budget); !walk.isDone();
         walk.next())
      ++met;
  CHECK(met < 110);
  REQUIRE(budget.leftOut());
  CHECK(budget.warning().find("more than 100 places") != std::string::npos);

  // A path deep inside is its own, though billions lead to its leaf.
  DagPath path = firstPath(*below);
  while (!dagLinks(*path.node()).children.empty())
    path.push(dagLinks(*path.node()).children.back());
  const auto found = scene->dagPath(path.fullName());
  REQUIRE(found);
  CHECK(*found == path);
  CHECK(found->isValid());

  // What no longer grows is counted anew when the hierarchy shrinks.
  std::vector<Node*> halves;
  for (int level = 50; level < 70; ++level)
    halves.push_back(&scene.node("left" + std::to_string(level)));
  REQUIRE(scene->deleteNodes(halves));
  CHECK(pathCount(scene.node("leaf")) == std::uint64_t{1} << 50);
}

}  // namespace host::scene
