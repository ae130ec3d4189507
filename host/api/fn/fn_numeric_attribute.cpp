#include <maya/MFnNumericAttribute.h>

#include <initializer_list>

#include "host/api/data/data_types.h"
#include "host/api/fn/fn_attribute.h"

namespace host::api {
namespace {

using Bound = std::optional<double> dg::Attribute::*;

std::shared_ptr<dg::Attribute> makeNumbers(const MString& fullName, const MString& briefName,
                                           const NumericKind& kind, double defaultValue,
                                           const char* longSuffixes, const char* shortSuffixes) {
  const std::string longName = toStd(fullName),
                    shortName = briefName.length() ? toStd(briefName) : longName;
  if (kind.count == 1) return dg::makeAttribute(longName, shortName, kind.leaf, defaultValue);
  std::vector<dg::AttributePtr> children;
  for (int i = 0; i < kind.count; ++i)
    children.push_back(dg::makeAttribute(longName + longSuffixes[i], shortName + shortSuffixes[i],
                                         kind.leaf, defaultValue));
  auto attribute = dg::makeCompound(longName, shortName, std::move(children));
  attribute->compoundType = kind.compound;
  return attribute;
}

/// The word for a compound of children like the first one; empty when they are no pair, triple or
/// quadruple of a kind.
std::string_view compoundOf(const std::vector<dg::AttributePtr>& children) {
  dg::AttributeType type = children.front()->type;
  for (const dg::AttributePtr& child : children)
    if (child->type != type || child->isArray) return {};
  if (type == dg::AttributeType::Distance || type == dg::AttributeType::Angle ||
      type == dg::AttributeType::Time)
    type = dg::AttributeType::Double;
  for (int each = MFnNumericData::kBoolean; each < MFnNumericData::kLast; ++each) {
    NumericKind kind;
    if (numericKind(static_cast<MFnNumericData::Type>(each), kind) && kind.leaf == type &&
        kind.count == static_cast<int>(children.size()) && kind.count > 1)
      return kind.compound;
  }
  return {};
}

MObject makeOfChildren(const MString& fullName, const MString& briefName,
                       std::initializer_list<const MObject*> parts, MStatus* status) {
  std::vector<dg::AttributePtr> children;
  for (const MObject* part : parts) {
    if (part->isNull()) continue;
    const auto* rep = objectAs<AttributeRep>(*part);
    if (!rep || rep->attribute->parent || rep->attribute->topIndex >= 0 ||
        !rep->attribute->isNumeric()) {
      setStatus(status, MStatus::kInvalidParameter);
      return MObject();
    }
    children.push_back(rep->attribute);
  }
  const std::string_view word = children.size() < 2 ? std::string_view() : compoundOf(children);
  if (word.empty()) {
    rememberError(Error{"A numeric compound takes two to four children of one numeric type"});
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  auto attribute = dg::makeCompound(toStd(fullName), toStd(briefName), std::move(children));
  attribute->compoundType = word;
  return makeAttributeObject(std::move(attribute), status);
}

/// The attribute itself, or its parts.
std::vector<dg::Attribute*> leaves(const MObject& object) {
  std::vector<dg::Attribute*> all;
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return all;
  if (!attribute->isCompound()) return {attribute};
  for (const dg::AttributePtr& child : attribute->children) all.push_back(child.get());
  return all;
}

/// One value for all parts, or one a part.
MStatus setBound(const MObject& object, Bound bound, std::initializer_list<double> values) {
  const auto parts = leaves(object);
  if (parts.empty() || (values.size() != 1 && values.size() != parts.size()))
    return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < parts.size(); ++i)
    parts[i]->*bound = values.begin()[values.size() == 1 ? 0 : i];
  return MStatus::kSuccess;
}

MStatus getBound(const MObject& object, Bound bound, std::initializer_list<double*> values) {
  const auto parts = leaves(object);
  if (parts.size() < values.size()) return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!(parts[i]->*bound)) return MStatus::kFailure;
    *values.begin()[i] = *(parts[i]->*bound);
  }
  return MStatus::kSuccess;
}

bool hasBound(const MObject& object, Bound bound, MStatus* status) {
  const auto parts = leaves(object);
  setStatus(status, parts.empty() ? MStatus::kFailure : MStatus::kSuccess);
  return !parts.empty() && (parts.front()->*bound).has_value();
}

template <class T>
MStatus setDefaults(const MObject& object, std::initializer_list<T> values) {
  const auto parts = leaves(object);
  if (parts.empty() || (values.size() != 1 && values.size() != parts.size()))
    return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < parts.size(); ++i)
    parts[i]->defaultValue = static_cast<double>(values.begin()[values.size() == 1 ? 0 : i]);
  return MStatus::kSuccess;
}

template <class T>
MStatus getDefaults(const MObject& object, std::initializer_list<T*> values) {
  const auto parts = leaves(object);
  if (parts.size() < values.size()) return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const dg::Value value = parts[i]->initialValue();
    if (const auto* real = std::get_if<double>(&value)) *values.begin()[i] = static_cast<T>(*real);
    if (const auto* integer = std::get_if<std::int64_t>(&value))
      *values.begin()[i] = static_cast<T>(*integer);
  }
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::getBound;
using api::getDefaults;
using api::hasBound;
using api::setBound;
using api::setDefaults;
using api::setStatus;

MObject MFnNumericAttribute::create(const MString& fullName, const MString& briefName,
                                    MFnNumericData::Type unitType, double defaultValue,
                                    MStatus* status) {
  api::NumericKind kind;
  if (!api::numericKind(unitType, kind)) {
    setStatus(status, MStatus::kInvalidParameter);
    return object_ = MObject();
  }
  return object_ = api::makeAttributeObject(
             api::makeNumbers(fullName, briefName, kind, defaultValue, "0123", "0123"), status);
}
MObject MFnNumericAttribute::create(const MString& fullName, const MString& briefName,
                                    const MObject& child1, const MObject& child2,
                                    const MObject& child3, MStatus* status) {
  return object_ = api::makeOfChildren(fullName, briefName, {&child1, &child2, &child3}, status);
}
MObject MFnNumericAttribute::create(const MString& fullName, const MString& briefName,
                                    const MObject& child1, const MObject& child2,
                                    const MObject& child3, const MObject& child4, MStatus* status) {
  return object_ =
             api::makeOfChildren(fullName, briefName, {&child1, &child2, &child3, &child4}, status);
}
MObject MFnNumericAttribute::createColor(const MString& fullName, const MString& briefName,
                                         MStatus* status) {
  auto attribute = api::makeNumbers(fullName, briefName, {dg::AttributeType::Float, 3, "float3"}, 0,
                                    "RGB", "rgb");
  attribute->usedAsColor = true;
  return object_ = api::makeAttributeObject(std::move(attribute), status);
}
MObject MFnNumericAttribute::createPoint(const MString& fullName, const MString& briefName,
                                         MStatus* status) {
  return object_ = api::makeAttributeObject(
             api::makeNumbers(fullName, briefName, {dg::AttributeType::Float, 3, "float3"}, 0,
                              "XYZ", "xyz"),
             status);
}
MObject MFnNumericAttribute::createAddr(const MString& fullName, const MString& briefName,
                                        MStatus* status) {
  return createAddr(fullName, briefName, nullptr, status);
}
MObject MFnNumericAttribute::createAddr(const MString& fullName, const MString& briefName,
                                        void* defaultValue, MStatus* status) {
  const auto address = static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(defaultValue));
  auto attribute = dg::makeAttribute(api::toStd(fullName), api::toStd(briefName),
                                     dg::AttributeType::Int64, address);
  attribute->storable = false;  // an address means nothing in a file
  return object_ = api::makeAttributeObject(std::move(attribute), status);
}
MObject MFnNumericAttribute::child(unsigned int index, MStatus* status) const {
  const dg::Attribute* attribute = api::attributeIn(object_, status);
  if (!attribute || index >= attribute->children.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return api::wrap(attribute->children[index].get());
}
MFnNumericData::Type MFnNumericAttribute::unitType(MStatus* status) const {
  const dg::Attribute* attribute = api::attributeIn(object_, status);
  return attribute ? api::numericTypeOf(*attribute) : MFnNumericData::kInvalid;
}

bool MFnNumericAttribute::hasMin(MStatus* status) const {
  return hasBound(object_, &dg::Attribute::minimum, status);
}
bool MFnNumericAttribute::hasMax(MStatus* status) const {
  return hasBound(object_, &dg::Attribute::maximum, status);
}
bool MFnNumericAttribute::hasSoftMin(MStatus* status) const {
  return hasBound(object_, &dg::Attribute::softMinimum, status);
}
bool MFnNumericAttribute::hasSoftMax(MStatus* status) const {
  return hasBound(object_, &dg::Attribute::softMaximum, status);
}
#define HOST_BOUNDS(Side, member)                                                  \
  MStatus MFnNumericAttribute::get##Side(double& a) const {                        \
    return getBound(object_, &dg::Attribute::member, {&a});                        \
  }                                                                                \
  MStatus MFnNumericAttribute::get##Side(double& a, double& b) const {             \
    return getBound(object_, &dg::Attribute::member, {&a, &b});                    \
  }                                                                                \
  MStatus MFnNumericAttribute::get##Side(double& a, double& b, double& c) const {  \
    return getBound(object_, &dg::Attribute::member, {&a, &b, &c});                \
  }                                                                                \
  MStatus MFnNumericAttribute::set##Side(double a) {                               \
    return setBound(object_, &dg::Attribute::member, {a});                         \
  }                                                                                \
  MStatus MFnNumericAttribute::set##Side(double a, double b) {                     \
    return setBound(object_, &dg::Attribute::member, {a, b});                      \
  }                                                                                \
  MStatus MFnNumericAttribute::set##Side(double a, double b, double c) {           \
    return setBound(object_, &dg::Attribute::member, {a, b, c});                   \
  }                                                                                \
  MStatus MFnNumericAttribute::set##Side(double a, double b, double c, double d) { \
    return setBound(object_, &dg::Attribute::member, {a, b, c, d});                \
  }
HOST_BOUNDS(Min, minimum)
HOST_BOUNDS(Max, maximum)
#undef HOST_BOUNDS
MStatus MFnNumericAttribute::getSoftMin(double& value) const {
  return getBound(object_, &dg::Attribute::softMinimum, {&value});
}
MStatus MFnNumericAttribute::getSoftMax(double& value) const {
  return getBound(object_, &dg::Attribute::softMaximum, {&value});
}
MStatus MFnNumericAttribute::setSoftMin(double value) {
  return setBound(object_, &dg::Attribute::softMinimum, {value});
}
MStatus MFnNumericAttribute::setSoftMax(double value) {
  return setBound(object_, &dg::Attribute::softMaximum, {value});
}

#define HOST_DEFAULT(Type)                                 \
  MStatus MFnNumericAttribute::getDefault(Type& a) const { \
    return getDefaults<Type>(object_, {&a});               \
  }                                                        \
  MStatus MFnNumericAttribute::setDefault(Type a) {        \
    return setDefaults<Type>(object_, {a});                \
  }
HOST_DEFAULT(bool)
HOST_DEFAULT(char)
HOST_DEFAULT(short)
HOST_DEFAULT(int)
HOST_DEFAULT(float)
HOST_DEFAULT(double)
#undef HOST_DEFAULT
#define HOST_DEFAULTS(Type)                                                  \
  MStatus MFnNumericAttribute::getDefault(Type& a, Type& b) const {          \
    return getDefaults<Type>(object_, {&a, &b});                             \
  }                                                                          \
  MStatus MFnNumericAttribute::getDefault(Type& a, Type& b, Type& c) const { \
    return getDefaults<Type>(object_, {&a, &b, &c});                         \
  }                                                                          \
  MStatus MFnNumericAttribute::setDefault(Type a, Type b) {                  \
    return setDefaults<Type>(object_, {a, b});                               \
  }                                                                          \
  MStatus MFnNumericAttribute::setDefault(Type a, Type b, Type c) {          \
    return setDefaults<Type>(object_, {a, b, c});                            \
  }
HOST_DEFAULTS(int)
HOST_DEFAULTS(float)
HOST_DEFAULTS(double)
#undef HOST_DEFAULTS
MStatus MFnNumericAttribute::getDefault(double& a, double& b, double& c, double& d) const {
  return getDefaults<double>(object_, {&a, &b, &c, &d});
}
MStatus MFnNumericAttribute::setDefault(double a, double b, double c, double d) {
  return setDefaults<double>(object_, {a, b, c, d});
}
