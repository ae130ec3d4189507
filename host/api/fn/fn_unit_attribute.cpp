#include <maya/MFnUnitAttribute.h>

#include "host/api/data/time_value.h"
#include "host/api/fn/fn_attribute.h"

namespace host::api {
namespace {

// Bounds and defaults given as plain numbers are in internal units: cm, radians, seconds.
double internal(double value) {
  return value;
}
double internal(const MDistance& value) {
  return value.asCentimeters();
}
double internal(const MAngle& value) {
  return value.asRadians();
}
double internal(const MTime& value) {
  return value.as(MTime::kSeconds);
}
void assign(double& target, double value) {
  target = value;
}
void assign(MDistance& target, double value) {
  target = MDistance(value, MDistance::kCentimeters);
}
void assign(MAngle& target, double value) {
  target = MAngle(value, MAngle::kRadians);
}
void assign(MTime& target, double value) {
  target = host::api::timeOf(value);
}

using Bound = std::optional<double> dg::Attribute::*;

template <class T>
MStatus getBound(const MObject& object, Bound bound, T& value) {
  const dg::Attribute* attribute = attributeIn(object);
  if (!attribute || !(attribute->*bound)) return MStatus::kFailure;
  assign(value, *(attribute->*bound));
  return MStatus::kSuccess;
}
template <class T>
MStatus setBound(const MObject& object, Bound bound, const T& value) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  attribute->*bound = internal(value);
  return MStatus::kSuccess;
}
bool hasBound(const MObject& object, Bound bound, MStatus* status) {
  const dg::Attribute* attribute = attributeIn(object, status);
  return attribute && attribute->*bound;
}
template <class T>
MStatus getDefaultOf(const MObject& object, T& value) {
  const dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  const dg::Value initial = attribute->initialValue();
  if (const auto* real = std::get_if<double>(&initial)) assign(value, *real);
  return MStatus::kSuccess;
}
template <class T>
MStatus setDefaultOf(const MObject& object, const T& value) {
  dg::Attribute* attribute = attributeIn(object);
  if (!attribute) return MStatus::kFailure;
  attribute->defaultValue = internal(value);
  return MStatus::kSuccess;
}

MObject makeUnit(const MString& fullName, const MString& briefName, dg::AttributeType type,
                 double value, MStatus* status) {
  return makeAttributeObject(dg::makeAttribute(toStd(fullName), toStd(briefName), type, value),
                             status);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName, Type unitType,
                                 double defaultValue, MStatus* status) {
  switch (unitType) {
    case kAngle:
      return create(fullName, briefName, MAngle(defaultValue, MAngle::kRadians), status);
    case kDistance:
      return create(fullName, briefName, MDistance(defaultValue, MDistance::kCentimeters), status);
    case kTime:
      return create(fullName, briefName, MTime(defaultValue, MTime::kSeconds), status);
    default:
      break;
  }
  setStatus(status, MStatus::kInvalidParameter);
  return object_ = MObject();
}
MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName,
                                 const MDistance& defaultValue, MStatus* status) {
  return object_ = api::makeUnit(fullName, briefName, dg::AttributeType::Distance,
                                 api::internal(defaultValue), status);
}
MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName,
                                 const MAngle& defaultValue, MStatus* status) {
  return object_ = api::makeUnit(fullName, briefName, dg::AttributeType::Angle,
                                 api::internal(defaultValue), status);
}
MObject MFnUnitAttribute::create(const MString& fullName, const MString& briefName,
                                 const MTime& defaultValue, MStatus* status) {
  return object_ = api::makeUnit(fullName, briefName, dg::AttributeType::Time,
                                 api::internal(defaultValue), status);
}
MFnUnitAttribute::Type MFnUnitAttribute::unitType(MStatus* status) const {
  const dg::Attribute* attribute = api::attributeIn(object_, status);
  if (!attribute) return kInvalid;
  switch (attribute->type) {
    case dg::AttributeType::Angle:
      return kAngle;
    case dg::AttributeType::Distance:
      return kDistance;
    case dg::AttributeType::Time:
      return kTime;
    default:
      return kInvalid;
  }
}

bool MFnUnitAttribute::hasMin(MStatus* status) const {
  return api::hasBound(object_, &dg::Attribute::minimum, status);
}
bool MFnUnitAttribute::hasMax(MStatus* status) const {
  return api::hasBound(object_, &dg::Attribute::maximum, status);
}
bool MFnUnitAttribute::hasSoftMin(MStatus* status) const {
  return api::hasBound(object_, &dg::Attribute::softMinimum, status);
}
bool MFnUnitAttribute::hasSoftMax(MStatus* status) const {
  return api::hasBound(object_, &dg::Attribute::softMaximum, status);
}
MStatus MFnUnitAttribute::getSoftMin(double& value) const {
  return api::getBound(object_, &dg::Attribute::softMinimum, value);
}
MStatus MFnUnitAttribute::getSoftMax(double& value) const {
  return api::getBound(object_, &dg::Attribute::softMaximum, value);
}
MStatus MFnUnitAttribute::setMin(double value) {
  return api::setBound(object_, &dg::Attribute::minimum, value);
}
MStatus MFnUnitAttribute::setMax(double value) {
  return api::setBound(object_, &dg::Attribute::maximum, value);
}
MStatus MFnUnitAttribute::setSoftMin(double value) {
  return api::setBound(object_, &dg::Attribute::softMinimum, value);
}
MStatus MFnUnitAttribute::setSoftMax(double value) {
  return api::setBound(object_, &dg::Attribute::softMaximum, value);
}
MStatus MFnUnitAttribute::getMin(double& value) const {
  return api::getBound(object_, &dg::Attribute::minimum, value);
}
MStatus MFnUnitAttribute::getMax(double& value) const {
  return api::getBound(object_, &dg::Attribute::maximum, value);
}
MStatus MFnUnitAttribute::getDefault(double& value) const {
  return api::getDefaultOf(object_, value);
}
MStatus MFnUnitAttribute::setDefault(double value) {
  return api::setDefaultOf(object_, value);
}
#define HOST_UNIT(Type)                                                \
  MStatus MFnUnitAttribute::getMin(Type& value) const {                \
    return api::getBound(object_, &dg::Attribute::minimum, value);     \
  }                                                                    \
  MStatus MFnUnitAttribute::getMax(Type& value) const {                \
    return api::getBound(object_, &dg::Attribute::maximum, value);     \
  }                                                                    \
  MStatus MFnUnitAttribute::setMin(const Type& value) {                \
    return api::setBound(object_, &dg::Attribute::minimum, value);     \
  }                                                                    \
  MStatus MFnUnitAttribute::setMax(const Type& value) {                \
    return api::setBound(object_, &dg::Attribute::maximum, value);     \
  }                                                                    \
  MStatus MFnUnitAttribute::setSoftMin(const Type& value) {            \
    return api::setBound(object_, &dg::Attribute::softMinimum, value); \
  }                                                                    \
  MStatus MFnUnitAttribute::setSoftMax(const Type& value) {            \
    return api::setBound(object_, &dg::Attribute::softMaximum, value); \
  }                                                                    \
  MStatus MFnUnitAttribute::getDefault(Type& value) const {            \
    return api::getDefaultOf(object_, value);                          \
  }                                                                    \
  MStatus MFnUnitAttribute::setDefault(const Type& value) {            \
    return api::setDefaultOf(object_, value);                          \
  }
HOST_UNIT(MDistance)
HOST_UNIT(MAngle)
HOST_UNIT(MTime)
#undef HOST_UNIT
