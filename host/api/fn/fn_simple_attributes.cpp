#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnMessageAttribute.h>

#include <algorithm>

#include "host/api/fn/fn_attribute.h"

using namespace host;
using api::attributeIn;
using api::setStatus;

namespace {

MObject make(const MString& fullName, const MString& briefName, dg::AttributeType type,
             MStatus* status) {
  return api::makeAttributeObject(
      dg::makeAttribute(api::toStd(fullName), api::toStd(briefName), type), status);
}

const dg::EnumField* fieldNamed(const dg::Attribute& attribute, const MString& name) {
  for (const dg::EnumField& field : attribute.enumFields)
    if (field.name == name.asChar()) return &field;
  return nullptr;
}

const dg::EnumField* fieldAt(const dg::Attribute& attribute, std::int64_t value) {
  for (const dg::EnumField& field : attribute.enumFields)
    if (field.value == value) return &field;
  return nullptr;
}

std::int64_t defaultField(const dg::Attribute& attribute) {
  const dg::Value value = attribute.initialValue();
  const auto* integer = std::get_if<std::int64_t>(&value);
  return integer ? *integer : 0;
}

}  // namespace

MObject MFnMessageAttribute::create(const MString& fullName, const MString& briefName,
                                    MStatus* status) {
  return object_ = make(fullName, briefName, dg::AttributeType::Message, status);
}

MObject MFnEnumAttribute::create(const MString& fullName, const MString& briefName,
                                 short defaultValue, MStatus* status) {
  auto attribute = dg::makeEnum(api::toStd(fullName), api::toStd(briefName), {}, defaultValue);
  return object_ = api::makeAttributeObject(std::move(attribute), status);
}
MStatus MFnEnumAttribute::addField(const MString& name, short index) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  auto& fields = attribute->enumFields;
  std::erase_if(fields, [&](const dg::EnumField& field) { return field.value == index; });
  fields.push_back({api::toStd(name), index});
  return MStatus::kSuccess;
}
MString MFnEnumAttribute::fieldName(short index, MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  const dg::EnumField* field = attribute ? fieldAt(*attribute, index) : nullptr;
  if (attribute && !field) setStatus(status, MStatus::kInvalidParameter);
  return field ? api::toMString(field->name) : MString();
}
short MFnEnumAttribute::fieldIndex(const MString& name, MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  const dg::EnumField* field = attribute ? fieldNamed(*attribute, name) : nullptr;
  if (attribute && !field) setStatus(status, MStatus::kInvalidParameter);
  return field ? static_cast<short>(field->value) : static_cast<short>(-1);
}
MStatus MFnEnumAttribute::getMin(short& minValue) const {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute || attribute->enumFields.empty()) return MStatus::kFailure;
  const auto less = [](const dg::EnumField& a, const dg::EnumField& b) {
    return a.value < b.value;
  };
  minValue = static_cast<short>(
      std::min_element(attribute->enumFields.begin(), attribute->enumFields.end(), less)->value);
  return MStatus::kSuccess;
}
MStatus MFnEnumAttribute::getMax(short& maxValue) const {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute || attribute->enumFields.empty()) return MStatus::kFailure;
  const auto less = [](const dg::EnumField& a, const dg::EnumField& b) {
    return a.value < b.value;
  };
  maxValue = static_cast<short>(
      std::max_element(attribute->enumFields.begin(), attribute->enumFields.end(), less)->value);
  return MStatus::kSuccess;
}
MStatus MFnEnumAttribute::getDefault(short& defaultValue) const {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  defaultValue = static_cast<short>(defaultField(*attribute));
  return MStatus::kSuccess;
}
MStatus MFnEnumAttribute::getDefault(MString& defaultName) const {
  const dg::Attribute* attribute = attributeIn(object_);
  const dg::EnumField* field = attribute ? fieldAt(*attribute, defaultField(*attribute)) : nullptr;
  if (!field) return MStatus::kFailure;
  defaultName = api::toMString(field->name);
  return MStatus::kSuccess;
}
MStatus MFnEnumAttribute::setDefault(short defaultValue) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  attribute->defaultValue = std::int64_t{defaultValue};
  return MStatus::kSuccess;
}
MStatus MFnEnumAttribute::setDefault(const MString& defaultName) {
  dg::Attribute* attribute = attributeIn(object_);
  const dg::EnumField* field = attribute ? fieldNamed(*attribute, defaultName) : nullptr;
  if (!field) return MStatus::kInvalidParameter;
  attribute->defaultValue = field->value;
  return MStatus::kSuccess;
}

MObject MFnCompoundAttribute::create(const MString& fullName, const MString& briefName,
                                     MStatus* status) {
  return object_ = make(fullName, briefName, dg::AttributeType::Compound, status);
}
MStatus MFnCompoundAttribute::addChild(const MObject& child) {
  const auto* rep = api::objectAs<api::AttributeRep>(child);
  return rep && rep->attribute->topIndex < 0 ? MFnAttribute(child).setParent(object_)
                                             : MStatus(MStatus::kInvalidParameter);
}
MStatus MFnCompoundAttribute::removeChild(const MObject& child) {
  dg::Attribute* attribute = attributeIn(object_);
  const auto* rep = api::objectAs<api::AttributeRep>(child);
  if (!attribute || !rep || rep->attribute->parent != attribute || attribute->top().topIndex >= 0)
    return MStatus::kInvalidParameter;
  std::erase(attribute->children, rep->attribute);
  rep->attribute->parent = nullptr;
  rep->attribute->childIndex = -1;
  for (std::size_t i = 0; i < attribute->children.size(); ++i)
    attribute->children[i]->childIndex = static_cast<int>(i);
  return MStatus::kSuccess;
}
unsigned int MFnCompoundAttribute::numChildren(MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  return attribute ? static_cast<unsigned int>(attribute->children.size()) : 0;
}
MObject MFnCompoundAttribute::child(unsigned int index, MStatus* status) const {
  const dg::Attribute* attribute = attributeIn(object_, status);
  if (!attribute || index >= attribute->children.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return api::wrap(attribute->children[index].get());
}

MObject MFnMatrixAttribute::create(const MString& fullName, const MString& briefName, Type,
                                   MStatus* status) {
  return object_ = make(fullName, briefName, dg::AttributeType::Matrix, status);
}
bool MFnMatrixAttribute::isDoublePrecision(MStatus* status) const {
  return attributeIn(object_, status) != nullptr;
}
MStatus MFnMatrixAttribute::getDefault(MMatrix& defaultMatrix) const {
  const dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  const auto* data = dg::dataAs<dg::MatrixData>(attribute->defaultValue);
  defaultMatrix = data ? api::toMMatrix(data->value) : MMatrix();
  return MStatus::kSuccess;
}
MStatus MFnMatrixAttribute::getDefault(MFloatMatrix& defaultMatrix) const {
  MMatrix matrix;
  const MStatus status = getDefault(matrix);
  for (unsigned int row = 0; row < 4; ++row)
    for (unsigned int column = 0; column < 4; ++column)
      defaultMatrix.matrix[row][column] = static_cast<float>(matrix.matrix[row][column]);
  return status;
}
MStatus MFnMatrixAttribute::setDefault(const MMatrix& defaultMatrix) {
  dg::Attribute* attribute = attributeIn(object_);
  if (!attribute) return MStatus::kFailure;
  attribute->defaultValue =
      dg::DataPtr(std::make_shared<dg::MatrixData>(api::toMatrix4(defaultMatrix)));
  return MStatus::kSuccess;
}
MStatus MFnMatrixAttribute::setDefault(const MFloatMatrix& defaultMatrix) {
  MMatrix matrix;
  for (unsigned int row = 0; row < 4; ++row)
    for (unsigned int column = 0; column < 4; ++column)
      matrix.matrix[row][column] = static_cast<double>(defaultMatrix.matrix[row][column]);
  return setDefault(matrix);
}
