#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "tests/host/dg/synthetic.h"

using namespace dgtest;

TEST_CASE("a chain is computed once when read, and again only after what it depends on changed") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  REQUIRE(world.graph.set(a->plug("x"), 2.0));
  CHECK(world.number(b->plug("out")) == 3.0 * (3.0 * 2.0 + 1.0) + 1.0);
  const int computed = world.types.computations;
  (void)world.number(b->plug("out"));
  REQUIRE(world.graph.set(a->plug("label"), std::string("irrelevant")));
  CHECK_FALSE(world.graph.isDirty(b->plug("out")));
  CHECK(world.types.computations == computed);
  REQUIRE(world.graph.set(a->plug("y"), 5.0));
  CHECK(world.graph.isDirty(b->plug("out")));
  CHECK(world.number(b->plug("out")) == 3.0 * (3.0 * 2.0 + 5.0 + 1.0) + 1.0);
}

TEST_CASE(
    "a computation that names the compound serves readers of its children, and of a connected "
    "compound") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.set(a->plug("x"), 10.0));
  CHECK(world.number(a->plug("outVZ")) == 12.0);
  const int computed = world.types.computations;
  CHECK(world.number(a->plug("outVX")) == 10.0);
  CHECK(world.types.computations == computed);
  REQUIRE(world.graph.connect(a->plug("outV"), b->plug("inV")));
  CHECK(world.number(b->plug("inVY")) == 11.0);
  CHECK(world.graph.isDriven(b->plug("inVY")));
  CHECK_FALSE(world.graph.set(b->plug("inVY"), 1.0));
  REQUIRE(world.graph.set(a->plug("inVY"), 100.0));
  CHECK(world.graph.getVec3(b->plug("outV"))->y == 110.0);
  // One child changes: the others, read before, must follow when their turn comes.
  REQUIRE(world.graph.set(a->plug("inVX"), 7.0));
  CHECK(world.number(b->plug("inVX")) == 17.0);
  CHECK(world.number(b->plug("inVZ")) == 12.0);
}

TEST_CASE("a freshly made destination is dirty even when everything downstream was dirty already") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b"), c = world.add("c");
  REQUIRE(world.graph.connect(b->plug("out"), c->plug("x")));
  CHECK(world.number(c->plug("out")) == 4.0);
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("in").element(3)));
  CHECK(world.graph.isDirty(b->plug("in").element(3)));
  CHECK(world.number(c->plug("out")) == 3.0 * (1.0 + 4.0) + 1.0);
}

TEST_CASE("a failing computation tells the reader, leaves the last value and is tried again") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  CHECK(world.number(b->plug("out")) == 4.0);
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  world.types.isBroken = true;
  const auto failed = world.graph.get(b->plug("x"));
  REQUIRE_FALSE(failed);
  CHECK(failed.error().message == "mixer 'a' is out of order");
  CHECK(asReal(world.graph.stored(b->plug("x"))) == 1.0);
  CHECK(world.graph.isDirty(b->plug("x")));
  world.types.isBroken = false;
  CHECK(world.number(b->plug("out")) == 13.0);
}

TEST_CASE("an input that fails makes what is computed from it fail, computed once a read") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("payload"), b->plug("payload")));
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  const AttributePtr other = makeAttribute("anything", "any", AttributeType::Generic);
  REQUIRE(world.graph.addAttribute(*a, other));
  REQUIRE(world.graph.set(a->plug("any"), std::string("not a number")));
  REQUIRE(world.graph.connect(a->plug("any"), b->plug("y")));
  const auto read = world.graph.get(b->plug("out"));
  REQUIRE_FALSE(read);
  CHECK(read.error().message.find("'b.y' cannot take the value of 'a.anything'") !=
        std::string::npos);
}

TEST_CASE("cycles end in a warning and the last value") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  REQUIRE(world.graph.connect(b->plug("out"), a->plug("x")));
  const MessageCapture messages;
  CHECK(world.number(b->plug("out")) == 3.0 * (3.0 * 0.0 + 1.0) + 1.0);
  CHECK(messages.text(MessageKind::Warning).find("depends on itself") != std::string::npos);
  REQUIRE(world.graph.set(a->plug("y"), std::int64_t{1}));
  CHECK(world.graph.isDirty(b->plug("out")));
  CHECK(world.graph.get(b->plug("out")));
  REQUIRE(world.graph.disconnect(b->plug("out"), a->plug("x")));
  CHECK_FALSE(world.graph.connect(a->plug("x"), a->plug("x")));
}

TEST_CASE(
    "chains of ten thousand nodes evaluate, fail and turn in circles without deep recursion") {
  constexpr int kCount = 10000;
  World world;
  world.history.isOn = false;
  std::vector<NodePtr> chain;
  for (int i = 0; i < kCount; ++i) {
    chain.push_back(world.add("n" + std::to_string(i)));
    if (i > 0)
      REQUIRE(
          world.graph.connect(chain[chain.size() - 2]->plug("outVX"), chain.back()->plug("inVX")));
  }
  REQUIRE(world.graph.set(chain[0]->plug("inVX"), 2.5));
  CHECK(world.number(chain.back()->plug("outVX")) == 2.5);
  REQUIRE(world.graph.set(chain[0]->plug("x"), 1.0));
  CHECK(world.graph.isDirty(chain.back()->plug("outVX")));

  SUBCASE("a failure far upstream is computed once and reaches the reader") {
    world.types.isBroken = true;
    const int before = world.types.computations;
    CHECK_FALSE(world.graph.get(chain.back()->plug("outVX")));
    CHECK(world.types.computations - before < 3 * kCount);
    world.types.isBroken = false;
    CHECK(world.number(chain.back()->plug("outVX")) == 3.5);
  }
  SUBCASE("closed to a circle") {
    const MessageCapture messages;
    REQUIRE(world.graph.connect(chain.back()->plug("outVX"), chain[0]->plug("inVX")));
    CHECK(world.graph.get(chain.back()->plug("outVX")));
    CHECK_FALSE(messages.text(MessageKind::Warning).empty());
  }
  SUBCASE("passing values on without computing") {
    for (int i = 1; i < kCount; ++i)
      REQUIRE(world.graph.connect(chain[static_cast<std::size_t>(i - 1)]->plug("y"),
                                  chain[static_cast<std::size_t>(i)]->plug("y")));
    REQUIRE(world.graph.set(chain[0]->plug("y"), std::int64_t{42}));
    CHECK(world.number(chain.back()->plug("y")) == 42.0);
  }
}

TEST_CASE("what only the hook knows is dirtied, computed and passed on") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.addAttribute(*a, makeAttribute("derived", "dv", AttributeType::Double)));
  REQUIRE(world.graph.connect(a->plug("derived"), b->plug("x")));
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  CHECK(world.number(b->plug("x")) == 10.0);
  REQUIRE(world.graph.set(a->plug("x"), 2.0));
  CHECK(world.number(b->plug("x")) == 20.0);
}

TEST_CASE(
    "attributes of a base type keep their identity, and a derived type may relate them anew") {
  SyntheticTypes types;
  NodeType derived;
  derived.name = "derivedMixer";
  derived.inherit(&types.mixer);
  const Attribute* extra = derived.add(makeAttribute("extra", "ex", AttributeType::Double));
  derived.affects(types.label, extra);
  derived.compute = [&](Node&, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != extra) return Computed::Unhandled;
    block.output(plug, static_cast<double>(block.text(types.label).size()));
    return Computed::Done;
  };
  Graph graph;
  const NodePtr plain = graph.createNode(types.mixer, "plain"),
                rich = graph.createNode(derived, "rich");
  CHECK(asReal(*graph.get(rich->plug(extra))) == 4.0);
  REQUIRE(graph.set(rich->plug("label"), std::string("longer")));
  REQUIRE(graph.set(plain->plug("label"), std::string("longer")));
  CHECK(asReal(*graph.get(rich->plug(extra))) == 6.0);
  REQUIRE(graph.set(rich->plug(types.x), 2.0));
  CHECK(asReal(*graph.get(rich->plug(types.out))) == 7.0);  // computed by the base type
  CHECK(types.mixer.affected(types.label).empty());
}
