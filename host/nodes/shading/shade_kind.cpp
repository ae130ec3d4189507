#include "host/nodes/shading/shade_kind.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace host::nodes {

namespace {

std::map<std::string, ShadeKind, std::less<>>& kinds() {
  static std::map<std::string, ShadeKind, std::less<>> all;
  return all;
}

/// A kind with its names looked up in one type.
struct BoundKind {
  std::vector<const Attribute*> inputs, arrays, outputs;
  void (*evaluate)(const ShadeInputs& in, std::span<double> out) = nullptr;
};

std::vector<double> readRows(dg::Graph& graph, const Plug& array, DataBlock& block) {
  std::vector<double> rows;
  const std::vector<const Attribute*> leaves = leavesOf(array.attribute());
  for (const Index index : graph.elementIndices(array)) {
    const Plug element = array.element(index);
    for (const Attribute* leaf : leaves) {
      Plug plug = element;
      if (leaf != array.attribute())
        plug = leaf->parent == array.attribute() ? element.child(leaf)
                                                 : element.child(leaf->parent).child(leaf);
      const Result<dg::Value> value = block.input(plug);
      double number = 0;
      if (value) {
        if (const auto* real = std::get_if<double>(&*value)) number = *real;
        if (const auto* whole = std::get_if<std::int64_t>(&*value))
          number = static_cast<double>(*whole);
      }
      rows.push_back(number);
    }
  }
  return rows;
}

Result<Computed> compute(const BoundKind& kind, Node& node, const Plug& plug, DataBlock& block) {
  const auto isWanted = [&](const Attribute* output) {
    return output == plug.attribute() || output->parent == plug.attribute();
  };
  if (std::none_of(kind.outputs.begin(), kind.outputs.end(), isWanted)) return Computed::Unhandled;
  ShadeInputs in;
  in.values.reserve(kind.inputs.size());
  for (const Attribute* input : kind.inputs) in.values.push_back(block.real(input));
  for (const Attribute* each : kind.arrays)
    in.rows.push_back(readRows(block.graph(), Plug(&node, each), block));
  std::vector<double> out(kind.outputs.size());
  kind.evaluate(in, out);
  for (std::size_t i = 0; i < out.size(); ++i) block.output(kind.outputs[i], out[i]);
  return Computed::Done;
}

}  // namespace

double linearOfLevel(std::uint8_t level) {
  static const std::array<double, 256> table = [] {
    std::array<double, 256> values{};
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = std::pow(double(i) / 255.0, 2.2);
    return values;
  }();
  return table[level];
}

std::uint8_t levelOfLinear(double light) {
  // Not a number shows black, as does what is darker than that.
  if (!(light > 0)) return 0;
  return static_cast<std::uint8_t>(std::lround(255 * std::pow(std::min(light, 1.0), 1 / 2.2)));
}

double luminance(const math::Vec3& color) {
  return 0.299 * color.x + 0.587 * color.y + 0.114 * color.z;
}

const ShadeKind* shadeKindOf(const dg::NodeType& type) {
  for (const dg::NodeType* at = &type; at; at = at->base)
    if (const auto found = kinds().find(at->name); found != kinds().end()) return &found->second;
  return nullptr;
}

std::vector<const Attribute*> leavesOf(const Attribute* attribute) {
  if (attribute->children.empty()) return {attribute};
  std::vector<const Attribute*> leaves;
  for (const AttributePtr& child : attribute->children)
    for (const Attribute* leaf : leavesOf(child.get())) leaves.push_back(leaf);
  return leaves;
}

void evaluateBy(TypeBuilder& builder, ShadeKind kind) {
  BoundKind bound;
  bound.evaluate = kind.evaluate;
  const auto bind = [&](const std::vector<std::string>& names) {
    std::vector<const Attribute*> leaves;
    for (const std::string& name : names)
      for (const Attribute* leaf : leavesOf(builder[name])) leaves.push_back(leaf);
    return leaves;
  };
  bound.inputs = bind(kind.inputs);
  bound.outputs = bind(kind.outputs);
  for (const std::string& name : kind.arrays) bound.arrays.push_back(builder[name]);
  for (const std::string& output : kind.outputs) {
    for (const std::string& input : kind.inputs)
      builder.affects({builder[input]}, {builder[output]});
    for (const std::string& input : kind.arrays)
      builder.affects({builder[input]}, {builder[output]});
  }
  builder.type().compute = [bound](Node& node, const Plug& plug, DataBlock& block) {
    return compute(bound, node, plug, block);
  };
  kinds()[builder.type().name] = std::move(kind);
}

}  // namespace host::nodes
