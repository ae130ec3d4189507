#include "host/nodes/anim/anim_curve.h"

#include <algorithm>
#include <array>

#include "host/dg/graph.h"

namespace host::nodes {

namespace {

using math::Key;
using math::KeyCurve;
using math::KeyInfinity;
using math::KeyTangent;

struct CurveKind {
  const char* name;
  const char (&code)[5];
  bool overTime;
  AttributeType value;
};
constexpr CurveKind kKinds[] = {
    {"animCurveTL", "PCTL", true, AttributeType::Distance},
    {"animCurveTA", "PCTA", true, AttributeType::Angle},
    {"animCurveTU", "PCTU", true, AttributeType::Double},
    {"animCurveTT", "PCTT", true, AttributeType::Time},
    {"animCurveUL", "PCUL", false, AttributeType::Distance},
    {"animCurveUA", "PCUA", false, AttributeType::Angle},
    {"animCurveUU", "PCUU", false, AttributeType::Double},
    {"animCurveUT", "PCUT", false, AttributeType::Time},
};

AttributePtr tangentChoice(const char* longName, const char* shortName) {
  AttributePtr attribute = dg::makeEnum(longName, shortName,
                                        {{"Fixed", 1},
                                         {"Linear", 2},
                                         {"Flat", 3},
                                         {"Smooth", 4},
                                         {"Step", 5},
                                         {"Slow", 6},
                                         {"Fast", 7},
                                         {"Spline", 9},
                                         {"Clamped", 10},
                                         {"Plateau", 16},
                                         {"StepNext", 17},
                                         {"Auto", 18}},
                                        4);
  return attribute;
}

AttributePtr infinityChoice(const char* longName, const char* shortName) {
  return dg::makeEnum(
      longName, shortName,
      {{"Constant", 0}, {"Linear", 1}, {"Cycle", 3}, {"Cycle with Offset", 4}, {"Oscillate", 5}});
}

void registerBase(dg::TypeRegistry& types) {
  TypeBuilder base(types, "animCurve", {}, typeCode("ANIC"));
  base.setAbstract();
  base.add(tangentChoice("tangentType", "tan"));
  base.add(boolean("weightedTangents", "wgt", true));
  base.add(array(boolean("keyTanLocked", "ktl", true)));
  base.add(array(boolean("keyWeightLocked", "kwl", true)));
  base.add(array(real("keyTanInX", "kix")));
  base.add(array(real("keyTanInY", "kiy")));
  base.add(array(real("keyTanOutX", "kox")));
  base.add(array(real("keyTanOutY", "koy")));
  base.add(array(tangentChoice("keyTanInType", "kit")));
  base.add(array(tangentChoice("keyTanOutType", "kot")));
  base.add(array(boolean("keyBreakdown", "kbd")));
  base.add(array(boolean("keyTickDrawSpecial", "kyts")));
  base.add(choice("rotationInterpolation", "roti", {"None", "Euler"}, 1));
  base.add(infinityChoice("preInfinity", "pre"));
  base.add(infinityChoice("postInfinity", "pst"));
  base.add(boolean("useCurveColor", "ucc"));
  base.add(color("curveColor", "cc"));
  base.finish();
}

double numberOf(const dg::Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  return 0;
}

double numberAt(dg::Graph& graph, const Plug& plug) {
  const auto value = graph.get(plug);
  return value ? numberOf(*value) : 0;
}

KeyTangent tangentFrom(double number, KeyTangent standard) {
  switch (const auto type = static_cast<KeyTangent>(static_cast<int>(number)); type) {
    case KeyTangent::Fixed:
    case KeyTangent::Linear:
    case KeyTangent::Flat:
    case KeyTangent::Smooth:
    case KeyTangent::Step:
    case KeyTangent::Slow:
    case KeyTangent::Fast:
    case KeyTangent::Spline:
    case KeyTangent::Clamped:
    case KeyTangent::Plateau:
    case KeyTangent::StepNext:
    case KeyTangent::Auto:
      return type;
  }
  return standard;
}

/// Calls `use(index, number)` for the elements of an array of numbers that are there.
template <class Use>
void eachNumber(Node& node, const char* attribute, const Use& use) {
  dg::Graph& graph = node.graph();
  const Plug whole = node.plug(attribute);
  for (const Index index : graph.elementIndices(whole))
    use(index, numberAt(graph, whole.element(index)));
}

void addOutput(TypeBuilder& curve, const CurveKind& kind) {
  const Attribute* input =
      curve.add(kind.overTime ? notStored(timeValue("input", "i")) : notStored(real("input", "i")));
  const Attribute* result = curve.add(output(dg::makeAttribute("output", "o", kind.value)));
  for (const char* name :
       {"tangentType", "weightedTangents", "keyTanInX", "keyTanInY", "keyTanOutX", "keyTanOutY",
        "keyTanInType", "keyTanOutType", "preInfinity", "postInfinity", "keyTimeValue"})
    curve.affects({curve[name]}, {result});
  curve.affects({input}, {result});
  const bool overTime = kind.overTime;
  curve.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const auto keys = readKeys(node);
    if (!keys) return failWith(keys.error());
    const Plug own(&node, input);
    const double at =
        overTime && !block.graph().source(own) ? sceneTime(block.graph()) : block.real(input);
    block.output(result, dg::Value(keys->at(at)));
    return Computed::Done;
  };
}

void registerConversion(dg::TypeRegistry& types) {
  TypeBuilder conversion(types, "unitConversion", {}, typeCode("UNTC"));
  conversion.livesByItsOutputs();
  const Attribute* input = conversion.add(notStored(real("input", "i")));
  const Attribute* factor = conversion.add(real("conversionFactor", "cf", 1));
  const Attribute* result = conversion.add(output(real("output", "o")));
  conversion.affects({input, factor}, {result});
  conversion.type().compute = [=](Node&, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    block.output(result, dg::Value(block.real(input) * block.real(factor)));
    return Computed::Done;
  };
  conversion.finish();
}

}  // namespace

void registerAnimCurves(dg::TypeRegistry& types) {
  registerBase(types);
  for (const CurveKind& kind : kKinds) {
    TypeBuilder curve(types, kind.name, "animCurve", typeCode(kind.code));
    AttributePtr time = kind.overTime ? timeValue("keyTime", "kt") : real("keyTime", "kt");
    curve.add(array(
        compound("keyTimeValue", "ktv", {time, dg::makeAttribute("keyValue", "kv", kind.value)})));
    addOutput(curve, kind);
    curve.finish();
  }
  registerConversion(types);
}

bool isAnimCurve(const Node& node) {
  return node.type().isA("animCurve");
}

bool isOverTime(const Node& curve) {
  return isAnimCurve(curve) && curve.type().name.find("CurveT") != std::string::npos;
}

std::string_view curveTypeFor(const Attribute& attribute) {
  switch (attribute.type) {
    case AttributeType::Distance:
      return "animCurveTL";
    case AttributeType::Angle:
      return "animCurveTA";
    case AttributeType::Time:
      return "animCurveTT";
    default:
      return "animCurveTU";
  }
}

Result<KeyCurve> readKeys(Node& curve) {
  dg::Graph& graph = curve.graph();
  const auto standard = tangentFrom(numberAt(graph, curve.plug("tangentType")), KeyTangent::Smooth);
  KeyCurve result;
  result.isWeighted = numberAt(graph, curve.plug("weightedTangents")) != 0;
  result.before =
      static_cast<KeyInfinity>(static_cast<int>(numberAt(graph, curve.plug("preInfinity"))));
  result.after =
      static_cast<KeyInfinity>(static_cast<int>(numberAt(graph, curve.plug("postInfinity"))));
  const Plug whole = curve.plug("keyTimeValue");
  const std::vector<Index> indices = graph.elementIndices(whole);
  const auto keyOf = [&](Index index) -> Key* {
    const auto found = std::ranges::lower_bound(indices, index);
    if (found == indices.end() || *found != index) return nullptr;
    return &result.keys[static_cast<std::size_t>(found - indices.begin())];
  };
  for (const Index index : indices) {
    const Plug element = whole.element(index);
    Key& key = result.keys.emplace_back();
    key.time = numberAt(graph, element.child(0));
    key.value = numberAt(graph, element.child(1));
    key.in = key.out = standard;
  }
  eachNumber(curve, "keyTanInType", [&](Index index, double number) {
    if (Key* key = keyOf(index)) key->in = tangentFrom(number, standard);
  });
  eachNumber(curve, "keyTanOutType", [&](Index index, double number) {
    if (Key* key = keyOf(index)) key->out = tangentFrom(number, standard);
  });
  const auto readPart = [&](const char* attribute, double Key::*member) {
    eachNumber(curve, attribute, [&](Index index, double number) {
      if (Key* key = keyOf(index)) key->*member = number;
    });
  };
  readPart("keyTanInX", &Key::inX);
  readPart("keyTanInY", &Key::inY);
  readPart("keyTanOutX", &Key::outX);
  readPart("keyTanOutY", &Key::outY);
  std::ranges::stable_sort(result.keys, {}, &Key::time);
  const auto same = [](const Key& a, const Key& b) { return a.time == b.time; };
  result.keys.erase(std::unique(result.keys.begin(), result.keys.end(), same), result.keys.end());
  return result;
}

Result<void> writeKeys(Node& curve, const KeyCurve& keys) {
  dg::Graph& graph = curve.graph();
  const std::size_t count = keys.keys.size();
  for (const char* name : {"keyTimeValue", "keyTanInType", "keyTanOutType", "keyTanInX",
                           "keyTanInY", "keyTanOutX", "keyTanOutY"}) {
    const Plug whole = curve.plug(name);
    for (const Index index : graph.elementIndices(whole))
      if (at(index) >= count) HOST_TRY(graph.removeElement(whole.element(index), true));
  }
  const auto put = [&](const Plug& plug, const dg::Value& value) -> Result<void> {
    const auto before = graph.get(plug);
    return before && dg::equal(*before, value) && graph.elementExists(plug)
               ? Result<void>()
               : graph.set(plug, value);
  };
  HOST_TRY(put(curve.plug("weightedTangents"), std::int64_t{keys.isWeighted}));
  HOST_TRY(put(curve.plug("preInfinity"), static_cast<std::int64_t>(keys.before)));
  HOST_TRY(put(curve.plug("postInfinity"), static_cast<std::int64_t>(keys.after)));
  for (std::size_t i = 0; i < count; ++i) {
    const Key& key = keys.keys[i];
    const auto at = static_cast<Index>(i);
    const Plug element = curve.plug("keyTimeValue").element(at);
    HOST_TRY(put(element.child(0), key.time));
    HOST_TRY(put(element.child(1), key.value));
    HOST_TRY(put(curve.plug("keyTanInType").element(at), static_cast<std::int64_t>(key.in)));
    HOST_TRY(put(curve.plug("keyTanOutType").element(at), static_cast<std::int64_t>(key.out)));
    HOST_TRY(put(curve.plug("keyTanInX").element(at), key.inX));
    HOST_TRY(put(curve.plug("keyTanInY").element(at), key.inY));
    HOST_TRY(put(curve.plug("keyTanOutX").element(at), key.outX));
    HOST_TRY(put(curve.plug("keyTanOutY").element(at), key.outY));
  }
  return {};
}

double sceneTime(dg::Graph& graph) {
  for (const dg::NodePtr& node : graph.nodes())
    if (node->type().name == "time") return numberOf(graph.stored(node->plug("outTime")));
  return 0;
}

void dirtyTimeDriven(dg::Graph& graph) {
  for (const dg::NodePtr& node : graph.nodes())
    if (isOverTime(*node) && !graph.source(node->plug("input"))) graph.dirty(node->plug("output"));
}

}  // namespace host::nodes
