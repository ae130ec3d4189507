#include "host/builtins/anim/key_args.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "host/cmd/plug_values.h"
#include "host/nodes/anim/anim_curve.h"

namespace host::builtins {

namespace {

using math::KeyTangent;

constexpr std::pair<const char*, KeyTangent> kTangents[] = {
    {"fixed", KeyTangent::Fixed},     {"linear", KeyTangent::Linear},
    {"flat", KeyTangent::Flat},       {"smooth", KeyTangent::Smooth},
    {"step", KeyTangent::Step},       {"slow", KeyTangent::Slow},
    {"fast", KeyTangent::Fast},       {"spline", KeyTangent::Spline},
    {"clamped", KeyTangent::Clamped}, {"plateau", KeyTangent::Plateau},
    {"auto", KeyTangent::Auto},       {"stepnext", KeyTangent::StepNext}};

void addLeaves(const dg::Plug& plug, std::vector<dg::Plug>& plugs) {
  if (plug.isCompound()) {
    for (const dg::AttributePtr& child : plug.attribute()->children)
      addLeaves(plug.child(child.get()), plugs);
  } else if (plug.attribute()->isNumeric() && !plug.isArray()) {
    plugs.push_back(plug);
  }
}

void addKeyable(dg::Graph& graph, dg::Node& node, std::vector<dg::Plug>& plugs) {
  std::vector<dg::Plug> leaves;
  for (const dg::AttributePtr& attribute : node.type().attributes())
    if (!attribute->isArray) addLeaves(node.plug(attribute.get()), leaves);
  for (const dg::AttributePtr& attribute : node.dynamicAttributes())
    if (!attribute->isArray) addLeaves(node.plug(attribute.get()), leaves);
  for (const dg::Plug& plug : leaves)
    if (graph.flag(plug, dg::Graph::PlugFlag::Keyable) && !graph.isLockedHereOrAbove(plug))
      plugs.push_back(plug);
}

/// A number, or the text of one.
std::optional<double> numberIn(std::string_view text) {
  double number = 0;
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

Result<edits::KeyRange::Times> rangeIn(const mel::Value& value, double factor) {
  constexpr double kAll = std::numeric_limits<double>::infinity();
  const std::string text = value.toText().value_or("");
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    const auto number = numberIn(text);
    if (!number) return fail("'{}' is no number and no range such as \"1:10\".", text);
    return edits::KeyRange::Times{*number * factor, *number * factor};
  }
  const std::string low = text.substr(0, colon), high = text.substr(colon + 1);
  const auto first = numberIn(low), last = numberIn(high);
  if ((!first && !low.empty()) || (!last && !high.empty()))
    return fail("'{}' is no number and no range such as \"1:10\".", text);
  return edits::KeyRange::Times{first ? *first * factor : -kAll, last ? *last * factor : kAll};
}

}  // namespace

Result<std::vector<dg::Plug>> keyedPlugs(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  const std::vector<std::string> attributes = args.texts("attribute");
  std::vector<dg::Plug> plugs;
  for (const scene::SelectionItem& item : list->items()) {
    if (nodes::isAnimCurve(*item.node)) continue;
    if (item.plug) {
      addLeaves(item.plug, plugs);
      continue;
    }
    if (attributes.empty()) addKeyable(context.document.graph(), *item.node, plugs);
    for (const std::string& name : attributes) {
      dg::Node* node = item.node.get();
      // A shape's transform is keyed when the shape has no such attribute, and the other way round.
      auto plug = dg::parsePlug(*node, name);
      if (!plug && item.isDag()) {
        const scene::DagPath other =
            scene::isShape(*node) ? item.path.transform() : item.path.toShape();
        if (!other.isWorld()) plug = dg::parsePlug(*other.node(), name);
      }
      if (plug) addLeaves(*plug, plugs);
    }
  }
  return plugs;
}

Result<std::vector<dg::Node*>> keyedCurves(Context& context, const ParsedArgs& args) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  std::vector<dg::Node*> curves;
  const auto add = [&](dg::Node* curve) {
    if (curve && std::ranges::find(curves, curve) == curves.end()) curves.push_back(curve);
  };
  for (const scene::SelectionItem& item : list->items())
    if (nodes::isAnimCurve(*item.node)) add(item.node.get());
  const auto plugs = keyedPlugs(context, args);
  if (!plugs) return failWith(plugs.error());
  for (const dg::Plug& plug : *plugs) add(edits::curveOf(context.document, plug));
  return curves;
}

Result<edits::KeyRange> keyRange(Context& context, const ParsedArgs& args) {
  edits::KeyRange range;
  const double frame = 1 / context.document.units().framesPerSecond();
  for (int use = 0; use < args.uses("time"); ++use) {
    if (args.values("time", use).empty()) continue;
    const auto times = rangeIn(args.values("time", use).front(), frame);
    if (!times) return failWith(times.error());
    range.times.push_back(*times);
  }
  for (int use = 0; use < args.uses("float"); ++use) {
    if (args.values("float", use).empty()) continue;
    const auto values = rangeIn(args.values("float", use).front(), 1);
    if (!values) return failWith(values.error());
    range.times.push_back(*values);
  }
  for (int use = 0; use < args.uses("index"); ++use) {
    const auto indices = rangeIn(args.values("index", use).front(), 1);
    if (!indices) return failWith(indices.error());
    range.indices.push_back(*indices);
  }
  return range;
}

Result<KeyTangent> tangentNamed(const std::string& name) {
  if (name == "global") return KeyTangent::Auto;
  for (const auto& [word, tangent] : kTangents)
    if (name == word) return tangent;
  return fail("'{}' is no type of tangent: use spline, linear, flat, step, clamped, auto, ...",
              name);
}

std::string tangentName(KeyTangent tangent) {
  for (const auto& [word, type] : kTangents)
    if (type == tangent) return word;
  return "fixed";
}

Syntax keySyntax() {
  Syntax syntax;
  syntax.flag("at", "attribute", {ArgType::String})
      .multiUse()
      .queryArgs()
      .flag("t", "time", {ArgType::Any})
      .multiUse()
      .queryArgs(cmd::QueryArgs::Optional)
      .flag("f", "float", {ArgType::Any})
      .multiUse()
      .queryArgs(cmd::QueryArgs::Optional)
      .flag("in", "index", {ArgType::Any})
      .multiUse()
      .queryArgs(cmd::QueryArgs::Optional)
      .flag("hi", "hierarchy", {ArgType::String})
      .flag("s", "shape", {ArgType::Bool})
      .flag("cp", "controlPoints", {ArgType::Bool})
      .objects(0, -1, true);
  return syntax;
}

double valueFactor(const dg::Node& curve, const scene::Units& units) {
  return cmd::unitFactor(curve.findAttribute("output")->type, units);
}

double timeFactor(const dg::Node& curve, const scene::Units& units) {
  return nodes::isOverTime(curve) ? 1 / units.framesPerSecond() : 1;
}

}  // namespace host::builtins
