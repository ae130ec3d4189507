#include "host/nodes/type_builder.h"

#include <utility>

#include "host/base/assert.h"

namespace host::nodes {

using dg::makeAttribute;

AttributePtr boolean(std::string longName, std::string shortName, bool value) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Bool,
                       std::int64_t{value});
}
AttributePtr integer(std::string longName, std::string shortName, std::int64_t value) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Long, value);
}
AttributePtr shortInteger(std::string longName, std::string shortName, std::int64_t value) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Short, value);
}
AttributePtr real(std::string longName, std::string shortName, double value) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Double, value);
}
AttributePtr single(std::string longName, std::string shortName, double value) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Float, value);
}
AttributePtr distance(std::string longName, std::string shortName, double centimeters) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Distance,
                       centimeters);
}
AttributePtr angle(std::string longName, std::string shortName, double radians) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Angle, radians);
}
AttributePtr timeValue(std::string longName, std::string shortName, double seconds) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Time, seconds);
}
AttributePtr text(std::string longName, std::string shortName) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::String);
}
AttributePtr matrix(std::string longName, std::string shortName) {
  return makeAttribute(std::move(longName), std::move(shortName), AttributeType::Matrix);
}
AttributePtr message(std::string longName, std::string shortName) {
  AttributePtr attribute =
      makeAttribute(std::move(longName), std::move(shortName), AttributeType::Message);
  attribute->storable = false;
  return attribute;
}

AttributePtr choice(std::string longName, std::string shortName,
                    std::initializer_list<std::string_view> fields, std::int64_t value) {
  std::vector<dg::EnumField> list;
  for (const std::string_view field : fields)
    list.push_back({std::string(field), static_cast<std::int64_t>(list.size())});
  return dg::makeEnum(std::move(longName), std::move(shortName), std::move(list), value);
}

AttributePtr triple(std::string longName, std::string shortName, AttributeType childType,
                    math::Vec3 value, const std::string& childShortName) {
  std::string type = childType == AttributeType::Float  ? "float3"
                     : childType == AttributeType::Long ? "long3"
                                                        : "double3";
  AttributePtr attribute =
      dg::makeTriple(std::move(longName), std::move(shortName), childType, std::move(type), value);
  if (!childShortName.empty())
    for (std::size_t i = 0; i < 3; ++i)
      attribute->children[i]->shortName = childShortName + "xyz"[i];
  return attribute;
}

AttributePtr color(std::string longName, std::string shortName, math::Vec3 value,
                   std::string childShortName) {
  if (childShortName.empty()) childShortName = shortName;
  AttributePtr attribute = numbers(longName, shortName, "float3",
                                   {single(longName + "R", childShortName + "r", value.x),
                                    single(longName + "G", childShortName + "g", value.y),
                                    single(longName + "B", childShortName + "b", value.z)});
  attribute->usedAsColor = true;
  return attribute;
}

AttributePtr numbers(std::string longName, std::string shortName, std::string compoundType,
                     std::initializer_list<AttributePtr> children) {
  AttributePtr attribute = compound(std::move(longName), std::move(shortName), children);
  attribute->compoundType = std::move(compoundType);
  return attribute;
}

AttributePtr compound(std::string longName, std::string shortName,
                      std::initializer_list<AttributePtr> children) {
  return dg::makeCompound(std::move(longName), std::move(shortName), children);
}

namespace {

template <class Change>
AttributePtr deep(AttributePtr attribute, Change change) {
  change(*attribute);
  for (const AttributePtr& child : attribute->children) (void)deep(child, change);
  return attribute;
}

}  // namespace

AttributePtr keyable(AttributePtr attribute) {
  return deep(std::move(attribute), [](Attribute& each) { each.keyable = true; });
}
AttributePtr channelBox(AttributePtr attribute) {
  return deep(std::move(attribute), [](Attribute& each) { each.channelBox = true; });
}
AttributePtr output(AttributePtr attribute) {
  return deep(std::move(attribute), [](Attribute& each) { each.writable = each.storable = false; });
}
AttributePtr array(AttributePtr attribute) {
  attribute->isArray = true;
  return attribute;
}
AttributePtr unordered(AttributePtr attribute) {
  attribute->isArray = true;
  attribute->indexMatters = false;
  return attribute;
}
AttributePtr internal(AttributePtr attribute) {
  return deep(std::move(attribute), [](Attribute& each) { each.internalStorage = true; });
}
AttributePtr hidden(AttributePtr attribute) {
  attribute->hidden = true;
  return attribute;
}
AttributePtr notStored(AttributePtr attribute) {
  return deep(std::move(attribute), [](Attribute& each) { each.storable = false; });
}
AttributePtr limited(AttributePtr attribute, double minimum, double maximum) {
  attribute->minimum = minimum;
  attribute->maximum = maximum;
  return attribute;
}
AttributePtr atLeast(AttributePtr attribute, double minimum) {
  attribute->minimum = minimum;
  return attribute;
}
AttributePtr softLimited(AttributePtr attribute, double minimum, double maximum) {
  attribute->softMinimum = minimum;
  attribute->softMaximum = maximum;
  return attribute;
}

void addNodeAttributes(dg::NodeType& type) {
  type.add(output(message("message", "msg")));
  type.add(hidden(boolean("caching", "cch")));
  type.add(hidden(boolean("frozen", "fzn")));
  type.add(hidden(
      dg::makeAttribute("isHistoricallyInteresting", "ihi", AttributeType::Byte, std::int64_t{2})));
  type.add(hidden(choice("nodeState", "nds",
                         {"Normal", "HasNoEffect", "Blocking", "Waiting-Normal",
                          "Waiting-HasNoEffect", "Waiting-Blocking"})));
  type.add(hidden(dg::makeTyped("binMembership", "bnm", "string")));
}

TypeBuilder::TypeBuilder(dg::TypeRegistry& types, std::string_view name, std::string_view base,
                         std::uint32_t id)
    : types_(types), type_(std::make_unique<dg::NodeType>()) {
  if (!base.empty()) {
    const dg::NodeType* baseType = types.find(base);
    HOST_ASSERT(baseType, "register the base type first");
    type_->inherit(baseType);
    type_->existsWithoutOutputs = baseType->existsWithoutOutputs;
  } else {
    addNodeAttributes(*type_);
  }
  type_->name = name;
  type_->id = id;
}

const Attribute* TypeBuilder::operator[](std::string_view name) const {
  const Attribute* attribute = type_->find(name);
  HOST_ASSERT(attribute, "add the attribute before it is referred to");
  return attribute;
}

TypeBuilder& TypeBuilder::affects(std::initializer_list<const Attribute*> from,
                                  std::initializer_list<const Attribute*> to) {
  for (const Attribute* source : from)
    for (const Attribute* target : to) type_->affects(source, target);
  return *this;
}

TypeBuilder& TypeBuilder::setAbstract() {
  type_->isAbstract = true;
  return *this;
}

TypeBuilder& TypeBuilder::livesByItsOutputs() {
  type_->existsWithoutOutputs = false;
  return *this;
}

const dg::NodeType* TypeBuilder::finish() {
  auto added = types_.add(std::move(type_));
  HOST_ASSERT(added, "built-in node types have names and ids of their own");
  return *added;
}

}  // namespace host::nodes
