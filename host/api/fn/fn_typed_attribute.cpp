#include <maya/MFnGenericAttribute.h>
#include <maya/MFnTypedAttribute.h>

#include <algorithm>

#include "host/api/data/data_types.h"
#include "host/api/data/numeric_data.h"
#include "host/api/data/plugin_data.h"
#include "host/api/fn/fn_attribute.h"

namespace host::api {
namespace {

/// A data object as an attribute's value; nothing for other objects.
dg::Value valueFrom(const MObject& object, const dg::Attribute& attribute) {
  const auto* rep = objectAs<DataRep>(object);
  if (!rep || !rep->data) return {};
  const std::string* text = stringOf(rep->data);
  if (text && attribute.type == dg::AttributeType::String) return *text;
  return rep->data;
}

MObject makeTyped(const MString& fullName, const MString& briefName, std::string_view dataType,
                  bool isText, const MObject& defaultData, MStatus* status) {
  auto attribute =
      isText ? dg::makeAttribute(toStd(fullName), toStd(briefName), dg::AttributeType::String)
             : dg::makeTyped(toStd(fullName), toStd(briefName), std::string(dataType));
  if (!defaultData.isNull()) attribute->defaultValue = valueFrom(defaultData, *attribute);
  return makeAttributeObject(std::move(attribute), status);
}

/// The words by which a generic attribute names what it accepts.
std::string acceptWord(MFnNumericData::Type type) {
  NumericKind kind;
  if (!numericKind(type, kind)) return {};
  if (!kind.compound.empty()) return std::string(kind.compound);
  return std::string(dg::makeAttribute("a", "a", kind.leaf)->typeWord());
}
std::string acceptWord(const MTypeId& id) {
  const PluginDataType* type = findPluginDataType(id.id());
  return type ? type->name : std::string();
}

MStatus accept(const MObject& object, std::string word) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute || word.empty()) return MStatus::kInvalidParameter;
  auto& words = attribute->acceptedTypes;
  if (std::find(words.begin(), words.end(), word) == words.end()) words.push_back(std::move(word));
  return MStatus::kSuccess;
}
MStatus refuse(const MObject& object, const std::string& word) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute || word.empty()) return MStatus::kInvalidParameter;
  return std::erase(attribute->acceptedTypes, word) > 0 ? MStatus::kSuccess
                                                        : MStatus::kInvalidParameter;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::attributeIn;
using api::setStatus;

MObject MFnTypedAttribute::create(const MString& fullName, const MString& briefName,
                                  const MTypeId& id, const MObject& defaultData, MStatus* status) {
  const api::PluginDataType* type = api::findPluginDataType(id.id());
  if (!type) {
    setStatus(status, MStatus::kInvalidParameter);
    return object_ = MObject();
  }
  return object_ = api::makeTyped(fullName, briefName, type->name, false, defaultData, status);
}
MObject MFnTypedAttribute::create(const MString& fullName, const MString& briefName,
                                  const MTypeId& id, MStatus* status) {
  return create(fullName, briefName, id, MObject::kNullObj, status);
}
MObject MFnTypedAttribute::create(const MString& fullName, const MString& briefName,
                                  MFnData::Type type, const MObject& defaultData, MStatus* status) {
  const std::string_view word = api::dataTypeName(type);
  if (word.empty() && type != MFnData::kAny) {
    setStatus(status, MStatus::kInvalidParameter);
    return object_ = MObject();
  }
  return object_ = api::makeTyped(fullName, briefName, word, type == MFnData::kString, defaultData,
                                  status);
}
MObject MFnTypedAttribute::create(const MString& fullName, const MString& briefName,
                                  MFnData::Type type, MStatus* status) {
  return create(fullName, briefName, type, MObject::kNullObj, status);
}
MFnData::Type MFnTypedAttribute::attrType(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? api::dataTypeOf(*attribute) : MFnData::kInvalid;
}
MStatus MFnTypedAttribute::getDefault(MObject& defaultData) const {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  defaultData = MObject();
  if (const auto* data = std::get_if<dg::DataPtr>(&attribute->defaultValue); data && *data)
    defaultData = api::wrap(*data);
  if (const auto* text = std::get_if<std::string>(&attribute->defaultValue))
    defaultData = api::wrap(api::makeStringData(*text));
  return MStatus::kSuccess;
}
MStatus MFnTypedAttribute::setDefault(const MObject& defaultData) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  dg::Value value = api::valueFrom(defaultData, *attribute);
  const auto converted = attribute->convert(value);
  if (!converted) return api::toStatus(converted, MStatus::kInvalidParameter);
  attribute->defaultValue = std::move(value);
  return MStatus::kSuccess;
}

MObject MFnGenericAttribute::create(const MString& fullName, const MString& briefName,
                                    MStatus* status) {
  return object_ =
             api::makeAttributeObject(dg::makeAttribute(api::toStd(fullName), api::toStd(briefName),
                                                        dg::AttributeType::Generic),
                                      status);
}
MStatus MFnGenericAttribute::addDataAccept(MFnData::Type type) {
  return api::accept(object_, std::string(api::dataTypeName(type)));
}
MStatus MFnGenericAttribute::addNumericDataAccept(MFnNumericData::Type type) {
  return api::accept(object_, api::acceptWord(type));
}
MStatus MFnGenericAttribute::addTypeId(const MTypeId& id) {
  return api::accept(object_, api::acceptWord(id));
}
MStatus MFnGenericAttribute::removeDataAccept(MFnData::Type type) {
  return api::refuse(object_, std::string(api::dataTypeName(type)));
}
MStatus MFnGenericAttribute::removeNumericDataAccept(MFnNumericData::Type type) {
  return api::refuse(object_, api::acceptWord(type));
}
MStatus MFnGenericAttribute::removeTypeId(const MTypeId& id) {
  return api::refuse(object_, api::acceptWord(id));
}
