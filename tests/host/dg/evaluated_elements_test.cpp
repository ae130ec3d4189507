// Elements that a computation puts into arrays of inputs: packed numbers and triples, and others.

#include "host/dg/evaluated_elements.h"

#include <doctest/doctest.h>

#include <random>

#include "tests/host/dg/synthetic.h"

namespace dgtest {
namespace {

/// "ledger": out = x; computing it enters x into each of its own arrays at the index x.
struct Ledger : World {
  NodeType type;
  const Attribute *x, *out, *numbers, *points, *rows, *amount;

  Ledger() {
    type.name = "ledger";
    x = type.add(makeAttribute("x", "x", AttributeType::Double));
    AttributePtr result = makeAttribute("out", "o", AttributeType::Double);
    result->writable = false;
    out = type.add(result);
    AttributePtr plain = makeAttribute("numbers", "n", AttributeType::Double);
    AttributePtr triples = makeTriple("points", "p", AttributeType::Float, "float3");
    AttributePtr text = makeAttribute("amount", "a", AttributeType::String);
    AttributePtr compound = makeCompound("rows", "r", {text});
    for (const AttributePtr& each : {plain, triples, compound}) each->isArray = true;
    numbers = type.add(plain);
    points = type.add(triples);
    amount = text.get();
    rows = type.add(compound);
    type.affects(x, out);
    type.compute = [this](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
      if (plug.attribute() != out) return Computed::Unhandled;
      const double now = block.real(x);
      const auto at = static_cast<Index>(now);
      block.output(Plug(&node, numbers).element(at), now);
      block.output(Plug(&node, points).element(at).child(1), now);
      block.output(Plug(&node, rows).element(at).child(amount), std::string("entered"));
      block.output(plug, now);
      return Computed::Done;
    };
  }
  NodePtr make() { return graph.createNode(type, "ledger1"); }
  void enter(const NodePtr& node, double value) {
    REQUIRE(graph.set(Plug(node.get(), x), value));
    REQUIRE(number(Plug(node.get(), out)) == value);
  }
  std::vector<Index> entries(const NodePtr& node, const Attribute* array) {
    return graph.elementIndices(Plug(node.get(), array));
  }
  void checkEntries(const NodePtr& node, const std::vector<Index>& expected) {
    for (const Attribute* array : {numbers, points, rows}) {
      CAPTURE(array->longName);
      CHECK(entries(node, array) == expected);
    }
  }
};

}  // namespace

TEST_CASE_FIXTURE(Ledger,
                  "evaluated elements: those of a step go with it, and the hash is blind to them") {
  const NodePtr node = make(), other = make();
  enter(other, 4);
  enter(node, 3);
  const std::size_t mark = history.done;
  const auto before = hash();
  enter(node, 5);
  checkEntries(node, {3, 5});
  history.undoTo(mark);
  dropEvaluatedElements();
  CHECK(hash() == before);
  REQUIRE(number(Plug(node.get(), out)) == 3);
  checkEntries(node, {3});
  checkEntries(other, {4});  // nothing of it changed
  CHECK(hash() == before);
  REQUIRE(history.redo());
  dropEvaluatedElements();
  REQUIRE(number(Plug(node.get(), out)) == 5);
  checkEntries(node, {5});
}

TEST_CASE_FIXTURE(Ledger, "evaluated elements: an edit or a connection makes one the user's own") {
  const NodePtr node = make();
  enter(node, 3);
  const auto before = hash();
  const std::size_t mark = history.done;
  REQUIRE(graph.set(Plug(node.get(), numbers).element(3), 9.0));
  REQUIRE(graph.set(Plug(node.get(), points).element(3).child(0), 9.0));
  CHECK(hash() != before);
  const NodePtr source = make();
  REQUIRE(graph.connect(Plug(source.get(), out), Plug(node.get(), numbers).element(7)));
  enter(node, 7);
  enter(node, 8);
  const auto edited = hash();
  REQUIRE(graph.set(Plug(node.get(), x), 1.0));
  dropEvaluatedElements();
  CHECK(entries(node, numbers) == std::vector<Index>{3, 7});
  CHECK(entries(node, points) == std::vector<Index>{3});
  CHECK(entries(node, rows).empty());
  history.undo();
  dropEvaluatedElements();
  CHECK(hash() == edited);
  history.undoTo(mark);
  dropEvaluatedElements();
  CHECK(hash() == before);
}

TEST_CASE_FIXTURE(Ledger,
                  "evaluated elements: a removed one and a deleted node come back as they were") {
  const NodePtr node = make();
  enter(node, 3);
  const auto before = hash();
  const std::size_t mark = history.done;
  REQUIRE(graph.removeElement(Plug(node.get(), numbers).element(3), false));
  history.undoTo(mark);
  CHECK(hash() == before);
  REQUIRE(graph.set(Plug(node.get(), x), 6.0));
  REQUIRE(graph.deleteNode(*node));
  dropEvaluatedElements();
  history.undoTo(mark);
  dropEvaluatedElements();
  CHECK(hash() == before);
  REQUIRE(number(Plug(node.get(), out)) == 3);
  checkEntries(node, {3});
}

TEST_CASE_FIXTURE(Ledger,
                  "evaluated elements: random steps, undone and redone, give back the hash") {
  const NodePtr nodes[] = {make(), make(), make()};
  std::mt19937 random(5);
  const auto pick = [&](int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
  };
  std::vector<std::uint64_t> hashes{hash()};
  const std::size_t first = history.done;
  std::vector<std::size_t> marks{first};

  for (int step = 0; step < 300; ++step) {
    const NodePtr& node = nodes[pick(3)];
    // Edited are others than those that are entered, which would be written over.
    const Plug element = Plug(node.get(), numbers).element(6 + pick(6));
    switch (pick(5)) {
      case 0:
        (void)graph.set(element, double(pick(9)));
        break;
      case 1:
        (void)graph.removeElement(Plug(node.get(), numbers).element(pick(12)), true);
        break;
      case 2:
        (void)graph.connect(Plug(nodes[pick(3)].get(), out), element, true);
        break;
      default:
        (void)graph.set(Plug(node.get(), x), double(pick(6)));
    }
    // Asking changes nothing that counts.
    const auto asked = hash();
    for (const NodePtr& each : nodes)
      if (pick(2) == 0) (void)number(Plug(each.get(), out));
    REQUIRE(hash() == asked);
    marks.push_back(history.done);
    hashes.push_back(asked);
  }
  for (std::size_t i = hashes.size() - 1; i-- > 0;) {
    history.undoTo(marks[i]);
    dropEvaluatedElements();
    CAPTURE(i);
    REQUIRE(hash() == hashes[i]);
    if (pick(2) == 0) (void)number(Plug(nodes[pick(3)].get(), out));
  }
  for (std::size_t i = 1; i < hashes.size(); ++i) {
    while (history.done < marks[i]) REQUIRE(history.redo());
    dropEvaluatedElements();
    REQUIRE(hash() == hashes[i]);
  }
}

}  // namespace dgtest
