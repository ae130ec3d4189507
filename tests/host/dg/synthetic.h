#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/dg/data_block.h"
#include "host/dg/graph.h"

// Small node types to try the graph with, a recorder that undoes and redoes, and the node's
// contents as a number.

namespace dgtest {

using namespace host;
using namespace host::dg;

inline double asReal(const Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  const auto* integer = std::get_if<std::int64_t>(&value);
  return integer ? static_cast<double>(*integer) : 0.0;
}

/// "mixer": out = 3 x + y + sum(in[]) + sum over points of 2 px + pz + 1; the vector outV from inV
/// and x; `wires[i].to` is `wires[i].from` twice over. `lists[i].weights[j]` adds to out, nested;
/// `fleeting[]` loses elements that are disconnected, `resetting` goes back to 5. A dynamic
/// attribute "derived" is 10 x, known to the hook only.
struct SyntheticTypes {
  NodeType mixer;
  int computations = 0;
  bool isBroken = false;  ///< computing fails

  const Attribute *x, *y, *in, *points, *inV, *wires, *from, *to, *out, *outV, *label, *payload,
      *message, *lists, *weights, *tag, *fleeting, *resetting, *triple;

  SyntheticTypes() {
    mixer.name = "mixer";
    message = mixer.add(makeAttribute("message", "msg", AttributeType::Message));
    x = mixer.add(makeAttribute("x", "x", AttributeType::Double));
    y = mixer.add(makeAttribute("y", "y", AttributeType::Long));
    AttributePtr array = makeAttribute("in", "i", AttributeType::Double);
    array->isArray = true;
    array->disconnectBehavior = DisconnectBehavior::Nothing;
    in = mixer.add(array);
    AttributePtr pointArray = makeTriple("points", "p", AttributeType::Float, "float3");
    pointArray->isArray = true;
    points = mixer.add(pointArray);
    inV = mixer.add(makeTriple("inV", "iv", AttributeType::Double, "double3", {0, 1, 2}));
    AttributePtr source = makeAttribute("from", "f", AttributeType::Double, 0.25);
    AttributePtr target = makeAttribute("to", "t", AttributeType::Double);
    target->writable = false;
    AttributePtr wireArray = makeCompound("wires", "w", {source, target});
    wireArray->isArray = true;
    from = source.get();
    to = target.get();
    wires = mixer.add(wireArray);
    AttributePtr weight = makeAttribute("weights", "ws", AttributeType::Double, 1.0);
    weight->isArray = true;
    AttributePtr tagText = makeAttribute("tag", "tg", AttributeType::String);
    AttributePtr listArray = makeCompound("lists", "ls", {weight, tagText});
    listArray->isArray = true;
    weights = weight.get();
    tag = tagText.get();
    lists = mixer.add(listArray);
    AttributePtr fleetingArray = makeAttribute("fleeting", "fl", AttributeType::Double);
    fleetingArray->isArray = true;
    fleetingArray->disconnectBehavior = DisconnectBehavior::Delete;
    fleeting = mixer.add(fleetingArray);
    AttributePtr resettingLeaf = makeAttribute("resetting", "rs", AttributeType::Double, 5.0);
    resettingLeaf->disconnectBehavior = DisconnectBehavior::Reset;
    resetting = mixer.add(resettingLeaf);
    label = mixer.add(makeAttribute("label", "l", AttributeType::String, std::string("none")));
    payload = mixer.add(makeTyped("payload", "pl", "doubleArray"));
    AttributePtr result = makeAttribute("out", "o", AttributeType::Double);
    result->writable = false;
    out = mixer.add(result);
    AttributePtr vector = makeTriple("outV", "ov", AttributeType::Double, "double3");
    for (const AttributePtr& child : vector->children) child->writable = false;
    vector->writable = false;
    outV = mixer.add(vector);
    AttributePtr tripleLeaf = makeAttribute("triple", "tr", AttributeType::Double);
    tripleLeaf->writable = false;
    triple = mixer.add(tripleLeaf);
    mixer.affects(out, triple);  // so x affects it too, though nobody says so
    for (const Attribute* input : {x, y, in, points, weights, fleeting, resetting})
      mixer.affects(input, out);
    mixer.affects(inV, outV);
    mixer.affects(x, outV);
    mixer.affects(from, to);
    mixer.dependentsDirty = [this](Node& node, const Plug& plug, std::vector<Plug>& also) {
      if (plug.attribute() != x) return;
      if (const Plug derived = node.plug("derived")) also.push_back(derived);
    };
    mixer.compute = [this](Node& node, const Plug& plug, DataBlock& block) {
      return compute(node, plug, block);
    };
  }

  Result<Computed> compute(Node& node, const Plug& plug, DataBlock& block) {
    ++computations;
    if (isBroken) return fail("mixer '{}' is out of order", node.name());
    if (plug.attribute() == out) {
      block.output(plug, expectedOut(block));
      return Computed::Done;
    }
    if (plug.attribute() == outV) {
      const math::Vec3 v = block.vec3(inV);
      for (int axis = 0; axis < 3; ++axis) block.output(plug.child(axis), v[axis] + block.real(x));
      return Computed::Done;
    }
    if (plug.attribute() == triple) {
      block.output(plug, 3.0 * block.real(x));
      return Computed::Done;
    }
    if (plug.attribute() == to) {
      const auto value = block.input(plug.parent().child(from));
      if (!value) return failWith(value.error());
      block.output(plug, 2.0 * asReal(*value));
      return Computed::Done;
    }
    if (plug.attribute()->longName == "derived") {
      block.output(plug, 10.0 * block.real(x));
      return Computed::Done;
    }
    return Computed::Unhandled;
  }

  double expectedOut(DataBlock& block) const {
    double sum = 3.0 * block.real(x) + static_cast<double>(block.integer(y)) + 1.0;
    std::vector<Index> indices;
    std::vector<double> values;
    block.graph().getPacked(Plug(&block.node(), in), indices, values);
    for (const double value : values) sum += value;
    block.graph().getPacked(Plug(&block.node(), points), indices, values);
    for (std::size_t i = 0; i < indices.size(); ++i) sum += 2.0 * values[3 * i] + values[3 * i + 2];
    block.graph().getPacked(Plug(&block.node(), fleeting), indices, values);
    for (const double value : values) sum += value;
    const Plug all(&block.node(), lists);
    for (const Index index : block.graph().elementIndices(all)) {
      block.graph().getPacked(all.element(index).child(weights), indices, values);
      for (const double value : values) sum += 7.0 * value;
    }
    return sum + block.real(resetting) - 5.0;
  }
};

class History final : public ChangeRecorder {
 public:
  [[nodiscard]] bool isRecording() const override { return isOn; }
  void record(std::unique_ptr<Change> change) override {
    changes.resize(done);
    changes.push_back(std::move(change));
    ++done;
  }
  bool undo() {
    if (done == 0) return false;
    changes[--done]->undo();
    return true;
  }
  bool redo() {
    if (done == changes.size()) return false;
    changes[done++]->redo();
    return true;
  }
  void undoTo(std::size_t mark) {
    while (done > mark) undo();
  }

  bool isOn = true;
  std::size_t done = 0;
  std::vector<std::unique_ptr<Change>> changes;
};

struct World {
  SyntheticTypes types;
  Graph graph;
  History history;

  World() {
    graph.seedUuids(7);
    graph.setRecorder(&history);
  }
  NodePtr add(std::string name) { return graph.createNode(types.mixer, std::move(name)); }
  double number(const Plug& plug) {
    const auto value = graph.get(plug);
    return value ? asReal(*value) : -1e30;
  }
  /// The digest of the whole document, order of nodes included.
  [[nodiscard]] std::uint64_t hash() const {
    std::uint64_t result = 0;
    for (const NodePtr& node : graph.nodes()) result = result * 31 + graph.storedHash(*node);
    return result;
  }
};

}  // namespace dgtest
