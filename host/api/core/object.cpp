#include <maya/MObject.h>
#include <maya/MObjectHandle.h>

#include <unordered_map>

#include "host/api/core/access.h"
#include "host/api/core/fn_types.h"

MObject MObject::kNullObj;

bool MObject::isNull() const {
  return !handle_;
}

MFn::Type MObject::apiType() const {
  const auto* rep = host::api::objectRep(*this);
  return rep ? rep->apiType() : MFn::kInvalid;
}

bool MObject::hasFn(MFn::Type functionSet) const {
  const auto* rep = host::api::objectRep(*this);
  return rep && (functionSet == MFn::kBase || rep->hasFn(functionSet));
}

const char* MObject::apiTypeStr() const {
  return host::api::fnTypeName(apiType());
}

bool MObject::operator==(const MObject& other) const {
  if (handle_.get() == other.handle_.get()) return true;
  const auto* a = host::api::objectRep(*this);
  const auto* b = host::api::objectRep(other);
  return a && b && a->equals(*b);
}

bool MObjectHandle::isAlive() const {
  return !object_.isNull();
}

bool MObjectHandle::isValid() const {
  const auto* rep = host::api::objectRep(object_);
  return rep && rep->isValid();
}

unsigned int MObjectHandle::hashCode() const {
  const auto* rep = host::api::objectRep(object_);
  return rep ? static_cast<unsigned int>(rep->hash() >> 4) : 0u;
}

namespace host::api {

MFn::Type NodeRep::apiType() const {
  return fnTypeOf(*node);
}
bool NodeRep::hasFn(MFn::Type type) const {
  return nodeHasFn(*node, type);
}
bool NodeRep::equals(const ObjectRep& other) const {
  const auto* same = dynamic_cast<const NodeRep*>(&other);
  return same && same->node == node;
}

MFn::Type AttributeRep::apiType() const {
  return fnTypeOf(*attribute);
}
bool AttributeRep::hasFn(MFn::Type type) const {
  if (type == MFn::kAttribute || type == apiType()) return true;
  const dg::AttributeType kind = attribute->type;
  if (type == MFn::kUnitAttribute)
    return kind >= dg::AttributeType::Distance && kind <= dg::AttributeType::Time;
  if (type == MFn::kCompoundAttribute) return attribute->isCompound();
  if (type == MFn::kNumericAttribute)
    return attribute->isCompound() && !attribute->compoundType.empty();
  return false;
}
bool AttributeRep::equals(const ObjectRep& other) const {
  const auto* same = dynamic_cast<const AttributeRep*>(&other);
  return same && same->attribute == attribute;
}

MFn::Type ComponentRep::apiType() const {
  return fnTypeOf(component.type());
}
bool ComponentRep::hasFn(MFn::Type type) const {
  if (type == MFn::kComponent || type == apiType()) return true;
  const bool isDouble = component.type() == scene::ComponentType::VertexFace;
  return type == (isDouble ? MFn::kDoubleIndexedComponent : MFn::kSingleIndexedComponent) ||
         type == MFn::kMeshComponent;
}
bool ComponentRep::equals(const ObjectRep& other) const {
  const auto* same = dynamic_cast<const ComponentRep*>(&other);
  return same && same->pending.empty() && pending.empty() && same->component == component;
}
scene::Component& ComponentRep::settled() {
  if (!pending.empty()) {
    scene::Component added(component.type(), std::move(pending));
    pending.clear();
    component.unite(added);
  }
  return component;
}

MFn::Type DataRep::apiType() const {
  return data ? fnTypeOf(*data) : MFn::kData;
}
bool DataRep::hasFn(MFn::Type type) const {
  return type == MFn::kData || dataHasFn(data.get(), type);
}
bool DataRep::equals(const ObjectRep& other) const {
  const auto* same = dynamic_cast<const DataRep*>(&other);
  return same && (same->data == data || (data && same->data && data->equals(*same->data)));
}

MObject wrap(dg::Node* node) {
  return node ? Access::make<MObject>(new NodeRep(node->shared_from_this())) : MObject();
}
MObject wrap(const dg::Attribute* attribute) {
  if (!attribute) return MObject();
  return Access::make<MObject>(
      new AttributeRep(const_cast<dg::Attribute*>(attribute)->shared_from_this()));
}
MObject wrap(scene::Component component) {
  return Access::make<MObject>(new ComponentRep(std::move(component)));
}
MObject wrap(dg::DataPtr data) {
  return Access::make<MObject>(new DataRep(std::move(data)));
}

dg::Node* nodeOf(const MObject& object) {
  const auto* rep = objectAs<NodeRep>(object);
  return rep ? rep->node.get() : nullptr;
}
const dg::Attribute* attributeOf(const MObject& object) {
  const auto* rep = objectAs<AttributeRep>(object);
  return rep ? rep->attribute.get() : nullptr;
}
scene::Component* componentOf(const MObject& object) {
  auto* rep = objectAs<ComponentRep>(object);
  return rep ? &rep->settled() : nullptr;
}

namespace {
std::string& rememberedError() {
  static std::string text;
  return text;
}
}  // namespace

void rememberError(const Error& error) {
  rememberedError() = error.message;
}
std::string takeRememberedError() {
  return std::exchange(rememberedError(), std::string());
}

MStatus::MStatusCode statusCode(ErrorKind kind) {
  switch (kind) {
    case ErrorKind::Failed:
      return MStatus::kFailure;
    case ErrorKind::BadArgument:
      return MStatus::kInvalidParameter;
    case ErrorKind::NotFound:
      return MStatus::kNotFound;
    case ErrorKind::Unsupported:
      return MStatus::kNotImplemented;
    case ErrorKind::NotLicensed:
      return MStatus::kLicenseFailure;
    case ErrorKind::OutOfMemory:
      return MStatus::kInsufficientMemory;
  }
  return MStatus::kFailure;
}

MStringArray toMStringArray(const std::vector<std::string>& texts) {
  MStringArray array;
  array.setLength(static_cast<unsigned int>(texts.size()));
  for (std::size_t i = 0; i < texts.size(); ++i)
    array[static_cast<unsigned int>(i)] = toMString(texts[i]);
  return array;
}

MMatrix toMMatrix(const math::Matrix4& matrix) {
  return MMatrix(matrix.m);
}

math::Matrix4 toMatrix4(const MMatrix& matrix) {
  math::Matrix4 result;
  matrix.get(result.m);
  return result;
}

}  // namespace host::api
