#include "host/dg/attribute.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace host::dg {
namespace {

constexpr std::array<std::string_view, 18> kTypeWords = {
    "bool",   "char",   "byte",         "short",       "long",    "int64",
    "float",  "double", "doubleLinear", "doubleAngle", "time",    "enum",
    "string", "matrix", "message",      "typed",       "generic", "compound"};

bool isReal(AttributeType type) {
  return type >= AttributeType::Float && type <= AttributeType::Time;
}

/// Truncates as an integer cast does, with the ends of the range and not-a-number made safe.
std::int64_t truncated(double real) {
  if (std::isnan(real)) return 0;
  if (real >= 9.2233720368547758e18) return std::numeric_limits<std::int64_t>::max();
  if (real <= -9.2233720368547758e18) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(real);
}

std::int64_t narrowed(AttributeType type, std::int64_t value) {
  switch (type) {
    case AttributeType::Bool:
      return value != 0 ? 1 : 0;
    case AttributeType::Char:
      return static_cast<std::int8_t>(value);
    case AttributeType::Byte:
      return static_cast<std::uint8_t>(value);
    case AttributeType::Short:
      return static_cast<std::int16_t>(value);
    case AttributeType::Long:
    case AttributeType::Enum:
      return static_cast<std::int32_t>(value);
    default:
      return value;
  }
}

std::string_view kindOf(const Value& value) {
  constexpr std::array<std::string_view, 4> kKinds = {"nothing", "an integer", "a number",
                                                      "a string"};
  if (value.index() < kKinds.size()) return kKinds[value.index()];
  const DataPtr& data = std::get<DataPtr>(value);
  return data ? data->typeName() : "nothing";
}

bool hasPayload(const Value& value) {
  const auto* data = std::get_if<DataPtr>(&value);
  return data && *data;
}

bool isEmpty(const Value& value) {
  const auto* data = std::get_if<DataPtr>(&value);
  return std::holds_alternative<std::monostate>(value) || (data && !*data);
}

const DataPtr& identityMatrix() {
  static const DataPtr kIdentity = std::make_shared<MatrixData>(math::Matrix4{});
  return kIdentity;
}

}  // namespace

const Attribute& Attribute::top() const {
  const Attribute* attribute = this;
  while (attribute->parent) attribute = attribute->parent;
  return *attribute;
}

int Attribute::arrayLevels() const {
  int levels = 0;
  for (const Attribute* attribute = this; attribute; attribute = attribute->parent)
    levels += attribute->isArray ? 1 : 0;
  return levels;
}

const Attribute* Attribute::find(std::string_view name) const {
  if (isNamed(name)) return this;
  for (const AttributePtr& child : children)
    if (const Attribute* found = child->find(name)) return found;
  return nullptr;
}

std::string_view Attribute::typeWord() const {
  if (type == AttributeType::Typed) return dataType;
  if (type == AttributeType::Compound && !compoundType.empty()) return compoundType;
  return kTypeWords[static_cast<std::size_t>(type)];
}

AttributePtr Attribute::clone() const {
  auto copy = std::make_shared<Attribute>(*this);
  copy->parent = nullptr;
  copy->topIndex = copy->childIndex = copy->flatIndex = -1;
  copy->isDynamic = copy->isComputed = false;
  for (std::size_t i = 0; i < children.size(); ++i) {
    copy->children[i] = children[i]->clone();
    copy->children[i]->parent = copy.get();
    copy->children[i]->childIndex = static_cast<int>(i);
  }
  return copy;
}

Result<Value> Attribute::convert(const Value& value) const {
  const auto* integer = std::get_if<std::int64_t>(&value);
  const auto* real = std::get_if<double>(&value);
  if (isNumeric() && (integer || real)) {
    if (!isReal(type)) return Value(narrowed(type, integer ? *integer : truncated(*real)));
    const double number = real ? *real : static_cast<double>(*integer);
    if (!std::isfinite(number))
      return fail(ErrorKind::BadArgument, "Attribute '{}' cannot be {}", longName, number);
    // Points are single precision: a length beyond that would end up in a mesh as no number.
    const bool isBounded = type == AttributeType::Float || type == AttributeType::Distance;
    if (isBounded && std::fabs(number) > std::numeric_limits<float>::max())
      return fail(ErrorKind::BadArgument, "Attribute '{}' cannot be as large as {}", longName,
                  number);
    return Value(type == AttributeType::Float ? static_cast<double>(static_cast<float>(number))
                                              : number);
  }
  switch (type) {
    case AttributeType::String:
      if (std::holds_alternative<std::string>(value)) return value;
      if (isEmpty(value)) return Value(std::string());
      break;
    case AttributeType::Matrix:
      if (dataAs<MatrixData>(value)) return value;
      if (isEmpty(value)) return Value(identityMatrix());
      break;
    case AttributeType::Typed:
      if (isEmpty(value)) return Value();
      if (dataType == "string" && std::holds_alternative<std::string>(value)) return value;
      if (hasPayload(value) &&
          (dataType.empty() || std::get<DataPtr>(value)->typeName() == dataType))
        return value;
      break;
    case AttributeType::Generic: {
      if (isEmpty(value)) return Value();
      if (acceptedTypes.empty() || integer || real) return value;
      const std::string_view word =
          hasPayload(value) ? std::get<DataPtr>(value)->typeName() : "string";
      if (std::ranges::find(acceptedTypes, word) != acceptedTypes.end()) return value;
      break;
    }
    case AttributeType::Message:
      if (isEmpty(value)) return Value();
      break;
    default:
      break;
  }
  return fail(ErrorKind::BadArgument, "Attribute '{}' of type {} cannot hold {}", longName,
              typeWord(), kindOf(value));
}

Value Attribute::initialValue() const {
  if (!std::holds_alternative<std::monostate>(defaultValue)) {
    if (auto converted = convert(defaultValue)) return *std::move(converted);
  }
  if (isReal(type)) return 0.0;
  if (isNumeric()) return std::int64_t{0};
  if (type == AttributeType::String) return std::string();
  if (type == AttributeType::Matrix) return identityMatrix();
  return {};
}

AttributePtr makeAttribute(std::string longName, std::string shortName, AttributeType type,
                           Value defaultValue) {
  auto attribute = std::make_shared<Attribute>();
  attribute->longName = std::move(longName);
  attribute->shortName = std::move(shortName);
  attribute->type = type;
  attribute->defaultValue = std::move(defaultValue);
  return attribute;
}

AttributePtr makeTyped(std::string longName, std::string shortName, std::string dataType) {
  AttributePtr attribute =
      makeAttribute(std::move(longName), std::move(shortName), AttributeType::Typed);
  attribute->dataType = std::move(dataType);
  return attribute;
}

AttributePtr makeEnum(std::string longName, std::string shortName, std::vector<EnumField> fields,
                      std::int64_t defaultValue) {
  AttributePtr attribute =
      makeAttribute(std::move(longName), std::move(shortName), AttributeType::Enum, defaultValue);
  attribute->enumFields = std::move(fields);
  return attribute;
}

AttributePtr makeCompound(std::string longName, std::string shortName,
                          std::vector<AttributePtr> children) {
  AttributePtr attribute =
      makeAttribute(std::move(longName), std::move(shortName), AttributeType::Compound);
  attribute->children = std::move(children);
  for (std::size_t i = 0; i < attribute->children.size(); ++i) {
    attribute->children[i]->parent = attribute.get();
    attribute->children[i]->childIndex = static_cast<int>(i);
  }
  return attribute;
}

AttributePtr makeTriple(std::string longName, std::string shortName, AttributeType childType,
                        std::string compoundType, math::Vec3 defaultValue) {
  std::vector<AttributePtr> children;
  for (int axis = 0; axis < 3; ++axis) {
    AttributePtr child = makeAttribute(longName + "XYZ"[axis], shortName + "xyz"[axis], childType);
    child->defaultValue = defaultValue[axis];
    if (!isReal(childType)) child->defaultValue = truncated(defaultValue[axis]);
    children.push_back(std::move(child));
  }
  AttributePtr attribute =
      makeCompound(std::move(longName), std::move(shortName), std::move(children));
  attribute->compoundType = std::move(compoundType);
  return attribute;
}

}  // namespace host::dg
