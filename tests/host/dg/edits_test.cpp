#include <doctest/doctest.h>

#include <cstdint>

#include "tests/host/dg/synthetic.h"

using namespace dgtest;

TEST_CASE("a deleted node comes back with its place, identity, connections, values and flags") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b"), c = world.add("c");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("in").element(2)));
  REQUIRE(world.graph.connect(b->plug("out"), c->plug("x")));
  REQUIRE(world.graph.connect(b->plug("out"), c->plug("in").element(7)));
  REQUIRE(world.graph.set(b->plug("points").element(4).child(1), 1.5));
  REQUIRE(world.graph.setFlag(b->plug("x"), Graph::PlugFlag::Locked, true));
  REQUIRE(world.graph.setAlias(b->plug("in").element(2), "smile"));
  const std::uint64_t before = world.hash();
  const std::string uuid = b->uuid();
  const std::size_t mark = world.history.done;

  REQUIRE(world.graph.deleteNode(*b));
  CHECK_FALSE(b->isAlive());
  CHECK_FALSE(world.graph.get(b->plug("x")));
  CHECK(world.number(c->plug("x")) == 2.0);  // what b.out was: 1 + a.out
  CHECK(world.graph.source(c->plug("x")).isNull());
  world.history.undoTo(mark);
  CHECK(world.hash() == before);
  CHECK(world.graph.nodes()[1] == b);
  CHECK(b->uuid() == uuid);
  CHECK(world.graph.findAlias(*b, "smile") == b->plug("in").element(2));
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  CHECK(world.number(c->plug("x")) == 5.0);
}

TEST_CASE("redo of a deletion gives the edited document again") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("outV"), b->plug("inV")));
  const std::size_t mark = world.history.done;
  REQUIRE(world.graph.deleteNode(*a));
  const std::uint64_t after = world.hash();
  world.history.undoTo(mark);
  while (world.history.redo()) continue;
  CHECK(world.hash() == after);
  CHECK(world.number(b->plug("inVZ")) == 2.0);
}

TEST_CASE("disconnecting keeps the value that the connection carried, looked at or not") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.set(a->plug("x"), 4.0));
  REQUIRE(world.graph.connect(a->plug("x"), b->plug("x")));
  REQUIRE(world.graph.disconnect(a->plug("x"), b->plug("x")));
  CHECK(world.number(b->plug("x")) == 4.0);
  world.history.undoTo(world.history.done - 2);
  CHECK(world.number(b->plug("x")) == 0.0);

  REQUIRE(world.graph.connect(a->plug("x"), b->plug("fleeting").element(2)));
  REQUIRE(world.graph.connect(a->plug("x"), b->plug("resetting")));
  REQUIRE(world.graph.disconnect(a->plug("x"), b->plug("fleeting").element(2)));
  REQUIRE(world.graph.disconnect(a->plug("x"), b->plug("resetting")));
  CHECK(world.graph.elementCount(b->plug("fleeting")) == 0);
  CHECK(world.number(b->plug("resetting")) == 5.0);
}

TEST_CASE(
    "edits that cannot be made are refused with the plug and the reason, and change nothing") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  REQUIRE(world.graph.setFlag(b->plug("inV"), Graph::PlugFlag::Locked, true));
  const std::uint64_t before = world.hash();
  const std::size_t mark = world.history.done;
  const auto message = [](const auto& result) {
    return result ? std::string("accepted") : result.error().message;
  };
  Graph& graph = world.graph;
  CHECK(message(graph.set(b->plug("inVX"), 1.0)) == "'b.inV.inVX' is locked");
  CHECK(message(graph.set(b->plug("x"), 1.0)) ==
        "'b.x' is connected: its value comes from 'a.out'");
  CHECK(message(graph.set(a->plug("out"), 1.0)) == "'a.out' is not writable");
  CHECK(message(graph.set(a->plug("x"), std::string("three"))) ==
        "'a.x': Attribute 'x' of type double cannot hold a string");
  CHECK(message(graph.set(a->plug("inV"), 1.0)) ==
        "'a.inV' is a compound: name one of its children");
  CHECK(message(graph.set(a->plug("points"), 1.0)) ==
        "'a.points' is an array: name one of its elements");
  CHECK(message(graph.set(Plug(), 1.0)) == "There is no such attribute");
  CHECK(message(graph.connect(b->plug("out"), b->plug("label"))) ==
        "'b.out' of type double cannot be connected to 'b.label' of type string");
  CHECK(message(graph.connect(b->plug("y"), b->plug("x"))) ==
        "'b.x' has an incoming connection from 'a.out' already");
  CHECK(message(graph.connect(a->plug("out"), b->plug("x"))) ==
        "'a.out' is connected to 'b.x' already");
  CHECK(message(graph.connect(a->plug("outV"), b->plug("inV"))) == "'b.inV' is locked");
  CHECK(
      message(graph.connect(a->plug("in"), a->plug("in").element(1))).find("parts of each other") !=
      std::string::npos);
  CHECK(message(graph.connect(a->plug("outV"), b->plug("outV"))) != "accepted");
  CHECK(message(graph.disconnect(a->plug("x"), b->plug("x"))) == "'a.x' is not connected to 'b.x'");
  CHECK(message(graph.removeElement(a->plug("in").element(9), true)) == "'a.in[9]' does not exist");
  CHECK(message(graph.setPacked(a->plug("in"), {2, 1}, {0, 0})) ==
        "The indices given for 'a.in' do not ascend");
  CHECK(message(graph.addAttribute(*a, makeAttribute("x", "xx", AttributeType::Bool))) ==
        "Node 'a' has an attribute 'x' already");
  CHECK(message(graph.removeAttribute(*a, a->findAttribute("x"))) != "accepted");
  CHECK(world.history.done == mark);
  CHECK(world.hash() == before);
  REQUIRE(graph.setNodeLocked(*a, true));
  CHECK(message(graph.deleteNode(*a)) == "Node 'a' is locked and cannot be deleted");
  CHECK(message(graph.renameNode(*a, "z")) == "Node 'a' is locked and cannot be renamed");
}

TEST_CASE("values convert between numeric kinds the way their types say") {
  World world;
  const NodePtr node = world.add("n");
  Graph& graph = world.graph;
  const auto through = [&](AttributeType type, const Value& value) {
    const std::string name = "t" + std::to_string(node->dynamicAttributes().size());
    const auto attribute = graph.addAttribute(*node, makeAttribute(name, name + "s", type));
    REQUIRE(attribute);
    REQUIRE(graph.set(node->plug(*attribute), value));
    return graph.stored(node->plug(*attribute));
  };
  CHECK(std::get<double>(through(AttributeType::Float, 0.1)) == static_cast<double>(0.1f));
  CHECK(std::get<double>(through(AttributeType::Double, std::int64_t{3})) == 3.0);
  CHECK(std::get<std::int64_t>(through(AttributeType::Long, -2.9)) == -2);
  CHECK(std::get<std::int64_t>(through(AttributeType::Short, std::int64_t{65537})) == 1);
  CHECK(std::get<std::int64_t>(through(AttributeType::Bool, 0.5)) == 0);
  CHECK(std::get<std::int64_t>(through(AttributeType::Bool, std::int64_t{7})) == 1);
  CHECK(std::get<std::int64_t>(through(AttributeType::Int64, 1e300)) == INT64_MAX);
  CHECK(dataAs<MatrixData>(through(AttributeType::Matrix, Value())) != nullptr);

  const NodePtr other = world.add("m");
  REQUIRE(graph.addAttribute(*other, makeTriple("wide", "wd", AttributeType::Double, "double3")));
  REQUIRE(graph.set(node->plug("points").element(0).child(2), 0.1));
  REQUIRE(graph.connect(node->plug("points").element(0), other->plug("wide")));
  CHECK(world.number(other->plug("wideZ")) == static_cast<double>(0.1f));
}

TEST_CASE(
    "paths resolve long, short and mixed names, elements and aliases, and errors name what is "
    "missing") {
  World world;
  const NodePtr node = world.add("bar");
  REQUIRE(world.graph.setAlias(node->plug("in").element(3), "smile"));
  CHECK(*parsePlug(*node, "points[2].pointsY") == node->plug("points").element(2).child(1));
  CHECK(*parsePlug(*node, "p[2].py") == *parsePlug(*node, "points[2].pointsY"));
  CHECK(*parsePlug(*node, "inVY") == *parsePlug(*node, "iv.ivy"));
  CHECK(*parsePlug(*node, "smile") == node->plug("in").element(3));
  CHECK(parsePlug(*node, "lists[1].weights[4]")->name() == "bar.lists[1].weights[4]");
  CHECK(parsePlug(*node, "ls[1].ws[4]")->attributePath(true) == "ls[1].ws[4]");
  const auto message = [&](const char* path) {
    const auto plug = parsePlug(*node, path);
    return plug ? std::string("found") : plug.error().message;
  };
  CHECK(message("foo") == "No attribute 'foo' on node 'bar'");
  CHECK(message("inV.foo") == "Attribute 'inV' on node 'bar' has no child 'foo'");
  CHECK(message("x[1]") == "Attribute 'x' on node 'bar' is not an array");
  CHECK(message("in[1][2]") == "Attribute 'in[1]' on node 'bar' is not an array");
  for (const char* path : {"", ".", "in[", "in[]", "in[a]", "in[-1]", "in[1]x", "in[99999999999]",
                           "inV.", "[0]", "in.[0]"})
    CHECK_MESSAGE(message(path) != "found", path);
}

TEST_CASE("observers may come and go while they are told, and hear of undo and redo") {
  struct Listener : GraphObserver {
    Graph* graph = nullptr;
    GraphObserver* toAdd = nullptr;
    int sets = 0, made = 0, broken = 0;
    bool leaves = false;
    void attributeEvent(AttributeEvent event, const Plug&, const Plug& other) override {
      sets += event == AttributeEvent::Set ? 1 : 0;
      made += event == AttributeEvent::ConnectionMade && other ? 1 : 0;
      broken += event == AttributeEvent::ConnectionBroken && other ? 1 : 0;
      if (toAdd) graph->addObserver(std::exchange(toAdd, nullptr));
      if (leaves) graph->removeObserver(this);
    }
  };
  World world;
  const NodePtr a = world.add("a");
  Listener stays, goes, comes;
  stays.graph = goes.graph = &world.graph;
  goes.leaves = true;
  stays.toAdd = &comes;
  world.graph.addObserver(&goes);
  world.graph.addObserver(&stays);
  REQUIRE(world.graph.set(a->plug("x"), 1.0));
  REQUIRE(world.graph.set(a->plug("x"), 2.0));
  REQUIRE(world.graph.connect(a->plug("y"), a->plug("in").element(0)));
  while (world.history.done > 1) world.history.undo();
  while (world.history.redo()) continue;
  CHECK(goes.sets == 1);
  CHECK(stays.sets == 6);
  CHECK(comes.sets >= 5);
  CHECK(stays.made == 2);
  CHECK(stays.broken == 1);
  world.graph.removeObserver(&stays);
  world.graph.removeObserver(&comes);
}

TEST_CASE("records survive edits that were made without one") {
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  REQUIRE(world.graph.connect(a->plug("out"), b->plug("x")));
  REQUIRE(world.graph.set(a->plug("in").element(3), 1.0));
  REQUIRE(world.graph.addAttribute(*a, makeAttribute("extra", "ex", AttributeType::Double)));
  REQUIRE(world.graph.set(a->plug("extra"), 1.0));
  REQUIRE(world.graph.setPacked(a->plug("points"), {1}, {0, 0, 0}));
  world.history.isOn = false;
  REQUIRE(world.graph.connect(b->plug("outV"), a->plug("points").element(1)));
  REQUIRE(world.graph.connect(b->plug("y"), a->plug("extra")));
  REQUIRE(world.graph.connect(b->plug("y"), b->plug("x"), true));
  REQUIRE(world.graph.connect(b->plug("out"), a->plug("in").element(3)));
  REQUIRE(world.graph.connect(a->plug("in").element(3),
                              a->plug("lists").element(0).child(world.types.weights).element(0)));
  SUBCASE("with everything still there") {}
  SUBCASE("with an attribute gone") {
    REQUIRE(world.graph.removeAttribute(*a, a->findAttribute("extra")));
  }
  SUBCASE("with a node gone") {
    REQUIRE(world.graph.deleteNode(*a));
  }
  world.history.undoTo(0);
  CHECK(world.graph.nodes().empty());
  while (world.history.redo()) continue;
  CHECK(world.graph.nodes().size() == 2);
}

TEST_CASE("an observer may read values while it hears what became dirty") {
  struct Reader : GraphObserver {
    World* world = nullptr;
    int heard = 0;
    void plugDirty(const Plug& plug) override {
      ++heard;
      for (const NodePtr& node : world->graph.nodes()) {
        (void)world->graph.get(node->plug("out"));
        (void)world->graph.evaluate(node->plug("wires"));
        (void)world->graph.get(node->plug("wires").element(heard % 50).child(world->types.to));
      }
      CHECK(plug.node()->isAlive());
    }
  };
  World world;
  const NodePtr a = world.add("a"), b = world.add("b");
  Reader reader;
  reader.world = &world;
  world.graph.addObserver(&reader);
  REQUIRE(world.graph.connect(a->plug("wires").element(0).child(1),
                              b->plug("wires").element(1).child(0)));
  for (int i = 0; i < 20; ++i)
    REQUIRE(world.graph.set(a->plug("wires").element(i).child(0), 1.0 * i));
  CHECK(reader.heard > 20);
  world.graph.removeObserver(&reader);
}

TEST_CASE("a node that is held for longer than its graph and its types live keeps its type") {
  host::dg::NodePtr held;
  {
    host::dg::TypeRegistry types;
    auto base = std::make_unique<host::dg::NodeType>();
    base->name = "heldBase";
    const host::dg::NodeType* baseType = *types.add(std::move(base));
    auto derived = std::make_unique<host::dg::NodeType>();
    derived->name = "held";
    derived->inherit(baseType);
    const host::dg::NodeType* type = *types.add(std::move(derived));
    host::dg::Graph graph;
    held = graph.createNode(*type, "longer");
    REQUIRE(graph.deleteNode(*held));
  }
  host::dg::TypeRegistry next;  // takes the memory of what is gone
  for (const char* name : {"a", "b", "c", "d"}) {
    auto type = std::make_unique<host::dg::NodeType>();
    type->name = name;
    REQUIRE(next.add(std::move(type)));
  }
  CHECK(held->type().name == "held");
  CHECK(held->type().isA("heldBase"));
  CHECK(held->type().nodeCount == 1);
}
