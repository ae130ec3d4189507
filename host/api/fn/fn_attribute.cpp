#include "host/api/fn/fn_attribute.h"

#include <fmt/format.h>
#include <maya/MFnAttribute.h>

#include <algorithm>
#include <map>
#include <set>

namespace host::api {

dg::Attribute* attributeIn(const MObject& object, MStatus* status) {
  const auto* rep = objectAs<AttributeRep>(object);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep ? rep->attribute.get() : nullptr;
}

MObject makeAttributeObject(std::shared_ptr<dg::Attribute> attribute, MStatus* status) {
  const auto isName = [](const std::string& name) {
    const auto isLetter = [](unsigned char c) { return std::isalnum(c) || c == '_'; };
    return !name.empty() && !std::isdigit(static_cast<unsigned char>(name[0])) &&
           std::all_of(name.begin(), name.end(), isLetter);
  };
  if (attribute->shortName.empty()) attribute->shortName = attribute->longName;
  if (!isName(attribute->longName) || !isName(attribute->shortName)) {
    rememberError(Error{"'" + attribute->longName + "' can't be the name of an attribute"});
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  setStatus(status, MStatus::kSuccess);
  return Access::make<MObject>(new AttributeRep(std::move(attribute)));
}

namespace {

/// Flags that have no meaning to the graph but that a plug-in may read back.
struct Extras {
  std::set<std::string> categories;
  bool isIndeterminant = false, affectsWorldSpace = false;
};
Extras& extrasOf(const dg::Attribute& attribute) {
  // Kept for as long as the attribute is: a stale entry must not be found by another one at the
  // same address.
  static std::map<std::weak_ptr<const dg::Attribute>, Extras, std::owner_less<>> all;
  std::erase_if(all, [](const auto& entry) { return entry.first.expired(); });
  return all[attribute.weak_from_this()];
}

bool flag(const MObject& object, bool dg::Attribute::*member, MStatus* status) {
  const dg::Attribute* attribute = attributeIn(object, status);
  return attribute && attribute->*member;
}

MStatus setFlag(const MObject& object, bool dg::Attribute::*member, bool state) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  attribute->*member = state;
  return MStatus::kSuccess;
}

/// Flags that decide how values are stored can't change once there are values.
MStatus setShape(const MObject& object, bool dg::Attribute::*member, bool state) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  if (attribute->*member != state && attribute->top().topIndex >= 0) {
    rememberError(
        Error{"Attribute '" + attribute->longName + "' is in use: it can't become another kind"});
    return MStatus::kFailure;
  }
  attribute->*member = state;
  return MStatus::kSuccess;
}

void forAll(dg::Attribute& attribute, bool dg::Attribute::*member, bool state) {
  attribute.*member = state;
  for (const dg::AttributePtr& child : attribute.children) forAll(*child, member, state);
}

/// Parts of a numeric pair or triple follow the whole.
MStatus setFlagOfAll(const MObject& object, bool dg::Attribute::*member, bool state) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  if (attribute->compoundType.empty())
    attribute->*member = state;
  else
    forAll(*attribute, member, state);
  return MStatus::kSuccess;
}

/// Whether `addAttr` takes the word after -dt; else it takes it after -at.
bool isDataWord(const dg::Attribute& attribute) {
  return attribute.type == dg::AttributeType::String || attribute.type == dg::AttributeType::Typed;
}

std::string addAttrCommand(const dg::Attribute& attribute, bool useLongNames) {
  const auto flagName = [&](const char* shortFlag, const char* longFlag) {
    return useLongNames ? longFlag : shortFlag;
  };
  std::string command = "addAttr";
  if (attribute.isArray) command += fmt::format(" {} true", flagName("-m", "-multi"));
  command += fmt::format(" {} \"{}\" {} \"{}\"", flagName("-sn", "-shortName"), attribute.shortName,
                         flagName("-ln", "-longName"), attribute.longName);
  if (attribute.parent)
    command += fmt::format(" {} \"{}\"", flagName("-p", "-parent"), attribute.parent->longName);
  command += fmt::format(
      " {} \"{}\"",
      isDataWord(attribute) ? flagName("-dt", "-dataType") : flagName("-at", "-attributeType"),
      attribute.typeWord());
  if (attribute.isCompound())
    command +=
        fmt::format(" {} {}", flagName("-nc", "-numberOfChildren"), attribute.children.size());
  const auto number = [&](const char* shortFlag, const char* longFlag,
                          const std::optional<double>& value) {
    if (value) command += fmt::format(" {} {}", flagName(shortFlag, longFlag), *value);
  };
  if (const auto* integer = std::get_if<std::int64_t>(&attribute.defaultValue);
      integer && *integer != 0)
    number("-dv", "-defaultValue", static_cast<double>(*integer));
  if (const auto* real = std::get_if<double>(&attribute.defaultValue); real && *real != 0)
    number("-dv", "-defaultValue", *real);
  number("-min", "-minValue", attribute.minimum);
  number("-max", "-maxValue", attribute.maximum);
  number("-smn", "-softMinValue", attribute.softMinimum);
  number("-smx", "-softMaxValue", attribute.softMaximum);
  if (!attribute.enumFields.empty()) {
    std::string fields;
    for (const dg::EnumField& field : attribute.enumFields)
      fields += fmt::format("{}{}={}", fields.empty() ? "" : ":", field.name, field.value);
    command += fmt::format(" {} \"{}\"", flagName("-en", "-enumName"), fields);
  }
  if (attribute.keyable) command += fmt::format(" {} true", flagName("-k", "-keyable"));
  if (attribute.hidden) command += fmt::format(" {} true", flagName("-h", "-hidden"));
  return command + ";";
}

void collectAddAttr(const dg::Attribute& attribute, bool useLongNames, MStringArray& commands) {
  commands.append(toMString(addAttrCommand(attribute, useLongNames)));
  for (const dg::AttributePtr& child : attribute.children)
    collectAddAttr(*child, useLongNames, commands);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::attributeIn;
using api::setStatus;

MString MFnAttribute::name(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::toMString(attribute->longName) : MString();
}
MString MFnAttribute::shortName(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::toMString(attribute->shortName) : MString();
}
MObject MFnAttribute::parent(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::wrap(attribute->parent) : MObject();
}
MStatus MFnAttribute::setParent(const MObject& parent) {
  const auto* rep = api::objectAs<api::AttributeRep>(object_);
  dg::Attribute* above = attributeIn(parent);
  if (!rep || !above || !above->isCompound() || rep->attribute->parent ||
      above->top().topIndex >= 0)
    return MStatus::kInvalidParameter;
  for (const dg::Attribute* step = above; step; step = step->parent)
    if (step == rep->attribute.get()) return MStatus::kInvalidParameter;  // it would hold itself
  rep->attribute->parent = above;
  rep->attribute->childIndex = static_cast<int>(above->children.size());
  above->children.push_back(rep->attribute);
  return MStatus::kSuccess;
}
MString MFnAttribute::niceNameOverride(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::toMString(attribute->niceName) : MString();
}
MStatus MFnAttribute::setNiceNameOverride(const MString& name) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  attribute->niceName = name.asChar();
  return MStatus::kSuccess;
}
MStatus MFnAttribute::addToCategory(const MString& category) {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute || category.length() == 0) return MStatus::kInvalidParameter;
  api::extrasOf(*attribute).categories.insert(category.asChar());
  return MStatus::kSuccess;
}
bool MFnAttribute::hasCategory(const MString& category) const {
  const dg::Attribute* attribute = attributeIn(object_);
  return attribute && api::extrasOf(*attribute).categories.count(category.asChar()) > 0;
}
MStatus MFnAttribute::getCategories(MStringArray& categories) const {
  categories.clear();
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  for (const std::string& each : api::extrasOf(*attribute).categories)
    categories.append(api::toMString(each));
  return MStatus::kSuccess;
}

#define HOST_ATTRIBUTE_FLAG(Query, Set, member, how)           \
  bool MFnAttribute::Query(MStatus* status) const {            \
    return api::flag(object_, &dg::Attribute::member, status); \
  }                                                            \
  MStatus MFnAttribute::Set(bool state) {                      \
    return api::how(object_, &dg::Attribute::member, state);   \
  }
HOST_ATTRIBUTE_FLAG(isReadable, setReadable, readable, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isWritable, setWritable, writable, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isConnectable, setConnectable, connectable, setFlag)
HOST_ATTRIBUTE_FLAG(isStorable, setStorable, storable, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isCached, setCached, cached, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isArray, setArray, isArray, setShape)
HOST_ATTRIBUTE_FLAG(indexMatters, setIndexMatters, indexMatters, setFlag)
HOST_ATTRIBUTE_FLAG(isKeyable, setKeyable, keyable, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isChannelBoxFlagSet, setChannelBox, channelBox, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(isHidden, setHidden, hidden, setFlag)
HOST_ATTRIBUTE_FLAG(isUsedAsColor, setUsedAsColor, usedAsColor, setFlag)
HOST_ATTRIBUTE_FLAG(isUsedAsFilename, setUsedAsFilename, usedAsFilename, setFlag)
HOST_ATTRIBUTE_FLAG(isRenderSource, setRenderSource, renderSource, setFlag)
HOST_ATTRIBUTE_FLAG(isWorldSpace, setWorldSpace, worldSpace, setFlag)
HOST_ATTRIBUTE_FLAG(affectsAppearance, setAffectsAppearance, affectsAppearance, setFlag)
HOST_ATTRIBUTE_FLAG(internal, setInternal, internalStorage, setFlagOfAll)
HOST_ATTRIBUTE_FLAG(usesArrayDataBuilder, setUsesArrayDataBuilder, usesArrayDataBuilder, setFlag)
#undef HOST_ATTRIBUTE_FLAG

#define HOST_ATTRIBUTE_EXTRA(Query, Set, member)                   \
  bool MFnAttribute::Query(MStatus* status) const {                \
    const dg::Attribute* attribute = attributeIn(object_, status); \
    return attribute && api::extrasOf(*attribute).member;          \
  }                                                                \
  MStatus MFnAttribute::Set(bool state) {                          \
    const dg::Attribute* attribute = attributeIn(object_);         \
    if (!attribute) return MStatus::kFailure;                      \
    api::extrasOf(*attribute).member = state;                      \
    return MStatus::kSuccess;                                      \
  }
HOST_ATTRIBUTE_EXTRA(isIndeterminant, setIndeterminant, isIndeterminant)
HOST_ATTRIBUTE_EXTRA(isAffectsWorldSpace, setAffectsWorldSpace, affectsWorldSpace)
#undef HOST_ATTRIBUTE_EXTRA

bool MFnAttribute::isDynamic(MStatus* status) const {
  return api::flag(object_, &dg::Attribute::isDynamic, status);
}
bool MFnAttribute::isExtension(MStatus* status) const {
  (void)attributeIn(object_, status);
  return false;
}
MFnAttribute::DisconnectBehavior MFnAttribute::disconnectBehavior(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  if (!attribute) return kNothing;
  switch (attribute->disconnectBehavior) {
    case dg::DisconnectBehavior::Delete:
      return kDelete;
    case dg::DisconnectBehavior::Reset:
      return kReset;
    default:
      return kNothing;
  }
}
MStatus MFnAttribute::setDisconnectBehavior(DisconnectBehavior behavior) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  attribute->disconnectBehavior = behavior == kDelete  ? dg::DisconnectBehavior::Delete
                                  : behavior == kReset ? dg::DisconnectBehavior::Reset
                                                       : dg::DisconnectBehavior::Nothing;
  return MStatus::kSuccess;
}
bool MFnAttribute::accepts(const MObject& other, MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  const dg::Attribute* source = attributeIn(other);
  if (!attribute || !source) return false;
  if (attribute->isNumeric() && source->isNumeric()) return true;
  return attribute->type == source->type && attribute->children.size() == source->children.size() &&
         attribute->dataType == source->dataType;
}

MString MFnAttribute::getAddAttrCmd(bool useLongNames, MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::toMString(api::addAttrCommand(*attribute, useLongNames)) : MString();
}
MStatus MFnAttribute::getAddAttrCmds(MStringArray& commands, bool useLongNames) const {
  commands.clear();
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  api::collectAddAttr(*attribute, useLongNames, commands);
  return MStatus::kSuccess;
}
