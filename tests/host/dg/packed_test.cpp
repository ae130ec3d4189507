#include <doctest/doctest.h>

#include <numeric>
#include <set>

#include "host/dg/packed_view.h"
#include "tests/host/dg/synthetic.h"

using namespace dgtest;

namespace {

std::vector<Index> countTo(Index count) {
  std::vector<Index> indices(static_cast<std::size_t>(count));
  std::iota(indices.begin(), indices.end(), 0);
  return indices;
}

}  // namespace

TEST_CASE(
    "a million packed triples are set, read and undone, and undo holds no more than the arrays") {
  constexpr Index kCount = 1'000'000;
  World world;
  const NodePtr node = world.add("n");
  const Plug points = node->plug("points");
  const std::vector<double> numbers(3u * kCount, 0.5);
  const std::uint64_t before = world.hash();
  REQUIRE(world.graph.setPacked(points, countTo(kCount), numbers));
  CHECK(world.history.changes.back()->bytes() < 1000);  // what was there before: nothing
  CHECK(world.graph.elementCount(points) == kCount);
  CHECK(world.number(points.element(kCount - 1).child(2)) == 0.5);
  REQUIRE(world.graph.set(points.element(77).child(0), 9.0));
  std::vector<Index> indices;
  std::vector<double> values;
  REQUIRE(world.graph.getPacked(points, indices, values));
  CHECK(values[3u * 77u] == 9.0);
  const std::uint64_t after = world.hash();
  world.history.undoTo(1);
  CHECK(world.hash() == before);
  CHECK(world.history.changes[1]->bytes() >= 3u * kCount * sizeof(double));
  while (world.history.redo()) continue;
  CHECK(world.hash() == after);
}

TEST_CASE("what is kept of a large array is what an edit changed, and goes to and fro exactly") {
  constexpr Index kCount = 100'000;
  World world;
  const Plug points = world.add("n")->plug("points");
  std::vector<Index> indices = countTo(kCount);
  std::vector<double> values(3u * kCount, 0.5);
  REQUIRE(world.graph.setPacked(points, indices, values));
  std::vector<std::uint64_t> states{world.hash()};
  const std::size_t start = world.history.done;
  const auto edit = [&] {
    REQUIRE(world.graph.setPacked(points, indices, values));
    CHECK(world.history.changes.back()->bytes() < 2000);
    states.push_back(world.hash());
  };
  values[3u * 77u] = 9;
  edit();
  // One element fewer, and two more at the end.
  indices.erase(indices.begin() + 500);
  values.erase(values.begin() + 1500, values.begin() + 1503);
  edit();
  indices.insert(indices.end(), {kCount + 3, kCount + 9});
  values.insert(values.end(), {1, 2, 3, 4, 5, 6});
  values[0] = -0.0;
  edit();
  for (int round = 0; round < 2; ++round) {
    for (std::size_t i = states.size(); i-- > 0;) {
      CHECK(world.hash() == states[i]);
      if (i > 0) world.history.undoTo(start + i - 1);
    }
    while (world.history.redo()) continue;
    CHECK(world.hash() == states.back());
  }
}

TEST_CASE("the number of a packed array's contents changes with them and comes back with them") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  const Plug points = a->plug("points");
  REQUIRE(world.graph.setPacked(points, {0, 1, 2, 3}, std::vector<double>(12, 1.0)));
  const auto content = [&] { return packedView(points)->content; };
  const std::uint64_t first = content(), ahead = nextPackedContent();
  std::vector<double> changed(12, 1.0);
  changed[4] = 2;
  REQUIRE(world.graph.setPacked(points, {0, 1, 2, 3}, changed));
  CHECK(content() == ahead);
  const std::uint64_t second = content();
  const std::size_t steps = world.history.changes.size();
  REQUIRE(world.graph.set(points.element(3).child(0), 7.0));
  const std::uint64_t third = content();
  REQUIRE(world.graph.addElement(points.element(8)));
  CHECK(std::set{first, second, third, content()}.size() == 4);
  world.history.undoTo(steps);
  CHECK(packedView(points)->values[9] == 1);
  CHECK(content() != third);
  world.history.undoTo(steps - 1);
  world.history.redo();
  CHECK(packedView(points)->values[4] == 2);
  // What has to be fetched can't be looked at.
  REQUIRE(world.graph.connect(b->plug("outV"), points.element(1)));
  CHECK_FALSE(packedView(points));
}

TEST_CASE("packed elements can be connected both ways, flagged and replaced around") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  const Plug points = b->plug("points"), numbers = b->plug("in");
  REQUIRE(world.graph.setPacked(points, {1, 5, 9}, {1, 2, 3, 4, 5, 6, 7, 8, 9}));
  REQUIRE(world.graph.connect(a->plug("outV"), points.element(5)));
  REQUIRE(world.graph.connect(points.element(9).child(1), numbers.element(0)));
  CHECK(world.number(numbers.element(0)) == 8.0);
  CHECK(world.number(points.element(5).child(2)) == 2.0);
  std::vector<Index> indices;
  std::vector<double> values;
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  REQUIRE(world.graph.getPacked(points, indices, values));
  CHECK(values == std::vector<double>{1, 2, 3, 1, 2, 3, 7, 8, 9});
  CHECK_FALSE(world.graph.setPacked(points, {9}, {0, 0, 0}));  // points[5] is driven
  REQUIRE(world.graph.disconnect(a->plug("outV"), points.element(5)));
  CHECK_FALSE(world.graph.setPacked(points, {5}, {0, 0, 0}));  // points[9] is read elsewhere
  REQUIRE(world.graph.setPacked(points, {9}, {10, 20, 30}));
  CHECK(world.number(numbers.element(0)) == 20.0);
  CHECK(world.graph.nextFreeIndex(numbers) == 1);
}

TEST_CASE("packed numbers are rounded to their type, whichever way they are written") {
  World world;
  const NodePtr node = world.add("n");
  const Plug points = node->plug("points");
  REQUIRE(world.graph.setPacked(points, {0}, {0.1, 0.2, 0.3}));
  REQUIRE(world.graph.set(points.element(1).child(0), 0.1));
  CHECK(world.number(points.element(0).child(0)) == world.number(points.element(1).child(0)));
  AttributePtr flags = makeAttribute("flags", "flg", AttributeType::Bool);
  flags->isArray = true;
  REQUIRE(world.graph.addAttribute(*node, flags));
  REQUIRE(world.graph.setPacked(node->plug("flags"), {0, 1}, {0.0, 2.0}));
  CHECK(std::get<std::int64_t>(*world.graph.get(node->plug("flags").element(1))) == 1);
}

TEST_CASE("an array connected as a whole follows its source's elements and values") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.set(b->plug("in").element(8), 80.0));
  REQUIRE(world.graph.set(a->plug("in").element(3), 30.0));
  const std::uint64_t before = world.hash();
  REQUIRE(world.graph.connect(a->plug("in"), b->plug("in")));
  CHECK(world.graph.elementIndices(b->plug("in")) == std::vector<Index>{3});
  REQUIRE(world.graph.set(a->plug("in").element(4), 40.0));
  CHECK(world.number(b->plug("out")) == 71.0);
  CHECK(world.number(b->plug("in").element(4)) == 40.0);
  CHECK_FALSE(world.graph.addElement(b->plug("in").element(6)));
  world.history.undo();
  world.history.undo();
  CHECK(world.hash() == before);
  CHECK(world.number(b->plug("out")) == 81.0);
}

TEST_CASE("an array of triples connected as a whole follows a change of one number") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.setPacked(a->plug("points"), {0, 4}, {1, 0, 0, 2, 0, 0}));
  REQUIRE(world.graph.connect(a->plug("points"), b->plug("points")));
  CHECK(world.number(b->plug("out")) == 7.0);
  REQUIRE(world.graph.set(a->plug("points").element(4).child(0), 3.0));
  CHECK(world.number(b->plug("out")) == 9.0);
  CHECK(world.number(b->plug("points").element(4).child(0)) == 3.0);
}
