#include <doctest/doctest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "host/base/messages.h"
#include "tests/host/dg/synthetic.h"

using namespace dgtest;

namespace {

/// Random edits through the public interface; refused ones are part of the test.
class Editor {
 public:
  Editor(World& world, unsigned seed) : world_(world), random_(seed) {}

  void edit() {
    if (world_.graph.nodes().size() < 3) create();
    switch (pick(20)) {
      case 0:
        create();
        break;
      case 1:
        if (world_.graph.nodes().size() > 4) (void)world_.graph.deleteNode(*node());
        break;
      case 2:
        (void)world_.graph.renameNode(*node(), "n" + std::to_string(pick(1000)));
        break;
      case 3:
        (void)world_.graph.setNodeLocked(*node(), pick(8) == 0);
        break;
      case 4:
      case 5:
      case 6:
        (void)world_.graph.set(leaf(), value());
        break;
      case 7:
        setPacked();
        break;
      case 8:
        (void)world_.graph.addElement(element());
        break;
      case 9:
        (void)world_.graph.removeElement(element(), pick(2) == 0);
        break;
      case 10:
      case 11:
      case 12:
      case 13:
        (void)world_.graph.connect(source(), destination(), pick(3) == 0);
        break;
      case 14:
      case 15:
        disconnect();
        break;
      case 16:
        changeAttributes();
        break;
      case 17:
        (void)world_.graph.setFlag(leaf(), static_cast<Graph::PlugFlag>(pick(4)), pick(4) == 0);
        break;
      case 18:
        (void)world_.graph.setAlias(leaf(), pick(3) == 0 ? "" : "alias" + std::to_string(pick(5)));
        break;
      default:
        (void)world_.graph.evaluate(source());
        break;
    }
  }

  int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

 private:
  NodePtr node() {
    return world_.graph
        .nodes()[static_cast<std::size_t>(pick(static_cast<int>(world_.graph.nodes().size())))];
  }
  void create() { (void)world_.add("n" + std::to_string(pick(1000))); }

  Plug dynamicLeaf(Node& owner) {
    const auto& dynamic = owner.dynamicAttributes();
    if (dynamic.empty()) return owner.plug(world_.types.x);
    return owner.plug(
        dynamic[static_cast<std::size_t>(pick(static_cast<int>(dynamic.size())))].get());
  }
  Plug element() {
    const NodePtr owner = node();
    const Attribute* const arrays[] = {world_.types.in, world_.types.points, world_.types.wires,
                                       world_.types.lists, world_.types.fleeting};
    return owner->plug(arrays[pick(5)]).element(pick(5));
  }
  Plug leaf() {
    const NodePtr owner = node();
    const SyntheticTypes& types = world_.types;
    switch (pick(12)) {
      case 0:
        return owner->plug(types.x);
      case 1:
        return owner->plug(types.y);
      case 2:
        return owner->plug(types.in).element(pick(5));
      case 3:
        return owner->plug(types.points).element(pick(5)).child(pick(3));
      case 4:
        return owner->plug(types.inV).child(pick(3));
      case 5:
        return owner->plug(types.wires).element(pick(4)).child(types.from);
      case 6:
        return owner->plug(types.label);
      case 7:
        return owner->plug(types.lists).element(pick(3)).child(types.weights).element(pick(3));
      case 8:
        return owner->plug(types.lists).element(pick(3)).child(types.tag);
      case 9:
        return owner->plug(types.resetting);
      case 10:
        return owner->plug(types.fleeting).element(pick(4));
      default:
        return dynamicLeaf(*owner);
    }
  }
  Plug source() {
    const NodePtr owner = node();
    const SyntheticTypes& types = world_.types;
    switch (pick(8)) {
      case 0:
        return owner->plug(types.out);
      case 6:
        return owner->plug(types.lists).element(pick(3));
      case 1:
        return owner->plug(types.outV);
      case 2:
        return owner->plug(types.outV).child(pick(3));
      case 3:
        return owner->plug(types.wires).element(pick(4)).child(types.to);
      case 4:
        return owner->plug(pick(2) == 0 ? types.in : types.points);
      case 5:
        return owner->plug(types.points).element(pick(5));
      default:
        return leaf();
    }
  }
  Plug destination() {
    const NodePtr owner = node();
    switch (pick(6)) {
      case 0:
        return owner->plug(world_.types.inV);
      case 3:
        return owner->plug(world_.types.lists).element(pick(3));
      case 1:
        return owner->plug(world_.types.points).element(pick(5));
      case 2:
        return pick(3) == 0 ? owner->plug(pick(2) == 0 ? world_.types.in : world_.types.points)
                            : owner->plug(world_.types.in).element(pick(5));
      default:
        return leaf();
    }
  }
  Value value() {
    switch (pick(4)) {
      case 0:
        return std::int64_t{pick(100)};
      case 1:
        return std::string("text") + std::to_string(pick(9));
      default:
        return pick(1000) / 8.0;
    }
  }
  void setPacked() {
    const bool isPoints = pick(2) == 0;
    std::vector<Index> indices;
    std::vector<double> values;
    for (Index i = 0; i < 6; ++i) {
      if (pick(2) == 0) continue;
      indices.push_back(i);
      for (int column = 0; column < (isPoints ? 3 : 1); ++column) values.push_back(pick(64) / 4.0);
    }
    (void)world_.graph.setPacked(node()->plug(isPoints ? world_.types.points : world_.types.in),
                                 indices, values);
  }
  void disconnect() {
    const NodePtr owner = node();
    const auto connections = world_.graph.incoming(*owner);
    if (connections.empty()) return;
    const auto& chosen =
        connections[static_cast<std::size_t>(pick(static_cast<int>(connections.size())))];
    (void)world_.graph.disconnect(chosen.source, chosen.destination);
  }
  void changeAttributes() {
    const NodePtr owner = node();
    if (pick(2) == 0) {
      const std::string name = pick(3) == 0 ? "derived" : "extra" + std::to_string(pick(3));
      const AttributePtr extra = makeAttribute(name, name + "s", AttributeType::Double);
      extra->writable = name != "derived";
      (void)world_.graph.addAttribute(*owner, extra);
    } else if (!owner->dynamicAttributes().empty()) {
      (void)world_.graph.removeAttribute(*owner, dynamicLeaf(*owner).attribute());
    }
  }

  World& world_;
  std::mt19937 random_;
};

/// What every output should hold, by a graph that starts with everything dirty: all marked by hand,
/// then read.
bool agreesWithRecomputation(World& world) {
  const auto readAll = [&] {
    std::vector<double> values;
    for (const NodePtr& node : world.graph.nodes()) {
      values.push_back(world.number(node->plug(world.types.triple)));
      values.push_back(world.number(node->plug(world.types.out)));
      if (const Plug derived = node->plug("derived")) values.push_back(world.number(derived));
      const Plug lists = node->plug(world.types.lists);
      for (const Index index : world.graph.elementIndices(lists)) {
        const Plug weights = lists.element(index).child(world.types.weights);
        for (const Index inner : world.graph.elementIndices(weights))
          values.push_back(world.number(weights.element(inner)));
      }
      for (const Attribute* vector : {world.types.outV, world.types.inV})
        for (int axis = 0; axis < 3; ++axis)
          values.push_back(world.number(node->plug(vector).child(axis)));
      for (const Index index : world.graph.elementIndices(node->plug(world.types.wires)))
        values.push_back(
            world.number(node->plug(world.types.wires).element(index).child(world.types.to)));
      for (const Index index : world.graph.elementIndices(node->plug(world.types.points)))
        values.push_back(world.number(node->plug(world.types.points).element(index).child(1)));
      for (const Index index : world.graph.elementIndices(node->plug(world.types.in)))
        values.push_back(world.number(node->plug(world.types.in).element(index)));
    }
    return values;
  };
  const std::vector<double> lazy = readAll();
  for (const NodePtr& node : world.graph.nodes()) {
    for (const Graph::Connection& each : world.graph.incoming(*node))
      world.graph.dirty(each.destination);
    for (const Attribute* output : {world.types.out, world.types.outV, world.types.triple})
      world.graph.dirty(node->plug(output));
    const Plug wires = node->plug(world.types.wires);
    for (const Index index : world.graph.elementIndices(wires))
      world.graph.dirty(wires.element(index).child(world.types.to));
  }
  return lazy == readAll();
}

/// Whether following connections and computations upstream ever returns to a node that was passed.
bool hasCycle(World& world) {
  std::vector<Node*> open, closed;
  const std::function<bool(Node*)> visit = [&](Node* node) {
    if (std::find(closed.begin(), closed.end(), node) != closed.end()) return false;
    if (std::find(open.begin(), open.end(), node) != open.end()) return true;
    open.push_back(node);
    for (const Graph::Connection& each : world.graph.incoming(*node))
      if (visit(each.source.node())) return true;
    open.pop_back();
    closed.push_back(node);
    return false;
  };
  for (const NodePtr& node : world.graph.nodes())
    if (visit(node.get())) return true;
  return false;
}

}  // namespace

TEST_CASE("any sequence of edits is undone and redone exactly, step by step") {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    CAPTURE(seed);
    const MessageCapture quiet;  // cycles are made, and warned of, on purpose
    World world;
    Editor editor(world, seed);
    std::vector<std::uint64_t> hashes{world.hash()};
    for (int step = 0; step < 120; ++step) {
      const std::size_t before = world.history.done;
      const std::uint64_t hashBefore = world.hash();
      editor.edit();
      if (world.history.done == before) {
        REQUIRE(world.hash() == hashBefore);  // a refused edit changes nothing, nor does a read
        continue;
      }
      hashes.resize(before + 1);
      hashes.resize(world.history.done + 1, 0);
      hashes.back() = world.hash();
      for (int turn = editor.pick(3); turn > 0 && world.history.undo(); --turn) {
        const std::uint64_t expected = hashes[world.history.done];
        if (expected != 0) REQUIRE(world.hash() == expected);
      }
    }
    world.history.changes.resize(world.history.done);
    const std::size_t end = world.history.done;
    for (int round = 0; round < 2; ++round) {
      while (world.history.undo())
        if (hashes[world.history.done] != 0) REQUIRE(world.hash() == hashes[world.history.done]);
      CHECK(world.graph.nodes().empty());
      while (world.history.done < end) {
        REQUIRE(world.history.redo());
        if (hashes[world.history.done] != 0) REQUIRE(world.hash() == hashes[world.history.done]);
      }
    }
  }
}

TEST_CASE("after any sequence of edits, undo and redo, lazy values equal recomputed ones") {
  int compared = 0;
  for (unsigned seed = 100; seed <= 200; ++seed) {
    CAPTURE(seed);
    const MessageCapture quiet;
    World world;
    Editor editor(world, seed);
    for (int step = 0; step < 80; ++step) {
      CAPTURE(step);
      const std::size_t before = world.history.done;
      editor.edit();
      // In a cycle the last value stands, which depends on who asked first: keep to what has one
      // answer.
      if (hasCycle(world)) world.history.undoTo(before);
      if (step % 7 == 0 && editor.pick(2) == 0)
        world.history.undoTo(
            world.history.done -
            static_cast<std::size_t>(
                editor.pick(static_cast<int>(std::min<std::size_t>(world.history.done, 4)) + 1)));
      if (step % 3 != 0) continue;
      REQUIRE(agreesWithRecomputation(world));
      ++compared;
    }
  }
  CHECK(compared > 1000);
}
