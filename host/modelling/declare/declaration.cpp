#include "host/modelling/declare/declaration.h"

#include <algorithm>

#include "host/base/assert.h"

namespace host::modelling {

namespace {

ArgType argTypeOf(const Attribute& attribute) {
  switch (attribute.type) {
    case AttributeType::Bool:
      return ArgType::Bool;
    case AttributeType::Distance:
      return ArgType::Distance;
    case AttributeType::Angle:
      return ArgType::Angle;
    case AttributeType::Time:
      return ArgType::Time;
    case AttributeType::String:
      return ArgType::String;
    case AttributeType::Float:
    case AttributeType::Double:
      return ArgType::Double;
    default:
      return ArgType::Int;
  }
}

bool hasFlagByNature(const Attribute& attribute) {
  return !attribute.isArray && attribute.type != AttributeType::Typed &&
         attribute.type != AttributeType::Matrix && attribute.type != AttributeType::Message;
}

}  // namespace

std::optional<double> Parameter::commandDefault() const {
  if (commandValue) return commandValue;
  const Attribute& leaf = attribute->children.empty() ? *attribute : *attribute->children.front();
  if (!leaf.isNumeric() || attribute->isArray) return std::nullopt;
  const dg::Value value = leaf.initialValue();
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  if (const auto* real = std::get_if<double>(&value)) return *real;
  return std::nullopt;
}

std::vector<ArgType> Parameter::argTypes() const {
  if (!attribute->isCompound()) return {argTypeOf(*attribute)};
  std::vector<ArgType> types;
  for (const AttributePtr& child : attribute->children) types.push_back(argTypeOf(*child));
  return types;
}

Declaration& Declaration::alias(std::string name) {
  aliases.push_back(std::move(name));
  return *this;
}

Declaration& Declaration::node(std::string type, std::uint32_t id, std::string baseType) {
  HOST_ASSERT(nodeTypes.empty(), "a command makes one type of node");
  if (nodeName.empty()) nodeName = type;
  nodeTypes.push_back({std::move(type), id});
  base = std::move(baseType);
  return *this;
}

Declaration& Declaration::nodeAlias(std::string type, std::uint32_t id) {
  nodeTypes.push_back({std::move(type), id});
  return *this;
}

Declaration& Declaration::nodesCalled(std::string name) {
  nodeName = std::move(name);
  return *this;
}

Declaration& Declaration::takes(ComponentType type, std::vector<ComponentType> also) {
  works = type;
  alsoTakes = std::move(also);
  return *this;
}

Declaration& Declaration::leaves(Leaves what) {
  selected = what;
  return *this;
}

Declaration& Declaration::parameter(AttributePtr attribute, std::string meaning) {
  Parameter added;
  if (hasFlagByNature(*attribute))
    added.flags.push_back({attribute->shortName, attribute->longName, {}});
  added.attribute = std::move(attribute);
  added.meaning = std::move(meaning);
  parameters.push_back(std::move(added));
  return *this;
}

Declaration& Declaration::flag(std::string shortName, std::string longName,
                               std::string childShortName) {
  if (longName.empty()) longName = last().attribute->longName;
  last().flags = {{std::move(shortName), std::move(longName), std::move(childShortName)}};
  return *this;
}

Declaration& Declaration::alsoFlag(std::string shortName, std::string longName) {
  last().flags.push_back({std::move(shortName), std::move(longName), {}});
  return *this;
}

Declaration& Declaration::noFlag() {
  last().flags.clear();
  return *this;
}

Declaration& Declaration::commandSets(double value) {
  last().commandValue = value;
  return *this;
}

Declaration& Declaration::withoutEffect(std::vector<double> harmless) {
  last().effect = Parameter::Effect::Recorded;
  last().harmless = std::move(harmless);
  return *this;
}

Declaration& Declaration::recordedOnly() {
  last().effect = Parameter::Effect::Recorded;
  last().takesAnything = true;
  return *this;
}

Declaration& Declaration::extraFlag(ExtraFlag flag) {
  extraFlags.push_back(std::move(flag));
  return *this;
}

Declaration& Declaration::operation(nodes::HistoryOperation runIn) {
  run = std::move(runIn);
  return *this;
}

Declaration& Declaration::builtBy(NodeBuilder buildIn) {
  build = std::move(buildIn);
  return *this;
}

Declaration& Declaration::afterFlags(AfterFlags runIn) {
  after = std::move(runIn);
  return *this;
}

Declaration& Declaration::creates(Create runIn) {
  create = std::move(runIn);
  return *this;
}

Declaration& Declaration::objects(int minimum, int maximum) {
  objectsMinimum = minimum;
  objectsMaximum = maximum;
  return *this;
}

Declaration& Declaration::trial(std::string flags, std::string components) {
  trials.push_back({std::move(flags), std::move(components)});
  return *this;
}

std::string Declaration::wantedName(const ParsedArgs& args) const {
  return args.text("name", nodeName + "#");
}

const Declaration* Declarations::ofNode(std::string_view type) const {
  for (const Declaration& each : list_)
    for (const Declaration::NodeNames& names : each.nodeTypes)
      if (names.type == type) return &each;
  return nullptr;
}

/// The flags of what the history base types have; their attributes are registered with them.
static const Declaration* baseDeclaration(std::string_view type) {
  static const std::list<Declaration> bases = [] {
    std::list<Declaration> list;
    list.emplace_back("", "")
        .node("polyModifierWorld", 0)
        .parameter(boolean("worldSpace", "ws"),
                   "lengths are those of the world, not the object's own");
    list.emplace_back("", "")
        .node("polyModifierUV", 0, "polyModifierWorld")
        .parameter(boolean("worldSpace", "ws"), "a map is the same in every space")
        .recordedOnly()
        .parameter(text("uvSetName", "uvs"), "the UV set; empty: the current one");
    list.emplace_back("", "")
        .node("polyPrimitive", 0)
        .parameter(triple("axis", "ax", AttributeType::Double, {0, 1, 0}),
                   "what is up in the primitive points this way")
        .parameter(distance("heightBaseline", "hbl"),
                   "which height lies at the origin: -1 the lower end, 0 the middle, 1 the upper")
        .parameter(text("uvSetName", "uvs"), "name of the UV set; empty: map1")
        .flag("uvs");
    return list;
  }();
  for (const Declaration& base : bases)
    if (base.nodeTypes.front().type == type) return &base;
  return nullptr;
}

const Declaration* Declarations::ofCommand(std::string_view command) const {
  for (const Declaration& each : list_)
    if (each.command == command ||
        std::find(each.aliases.begin(), each.aliases.end(), command) != each.aliases.end())
      return &each;
  return nullptr;
}

std::vector<const Parameter*> Declarations::parametersOf(const Declaration& declaration) const {
  std::vector<const Parameter*> all;
  const Declaration* base = ofNode(declaration.base);
  if (!base) base = baseDeclaration(declaration.base);
  if (base) all = parametersOf(*base);
  for (const Parameter& parameter : declaration.parameters) {
    // A derived type may give an inherited attribute flags and values of its own.
    const auto same = std::find_if(all.begin(), all.end(), [&](const Parameter* each) {
      return each->attribute->longName == parameter.attribute->longName;
    });
    if (same == all.end())
      all.push_back(&parameter);
    else
      *same = &parameter;
  }
  return all;
}

}  // namespace host::modelling
