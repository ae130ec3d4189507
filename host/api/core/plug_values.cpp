#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>

#include <cmath>
#include <optional>

#include "host/api/core/access.h"
#include "host/api/data/array_attrs.h"
#include "host/api/data/numeric_data.h"
#include "host/api/data/time_value.h"
#include "host/edits/at_time.h"

namespace host::api {
namespace {

MStatus readValue(const MPlug& plug, dg::Value& value) {
  const dg::Plug inner = plugOf(plug);
  if (inner.isNull()) return MStatus::kFailure;
  if (inner.isArray() || inner.isCompound()) return MStatus::kInvalidParameter;
  auto read = inner.node()->graph().get(inner);
  if (read) value = std::move(*read);
  return toStatus(read);
}

MStatus readReal(const MPlug& plug, double& result) {
  dg::Value value;
  const MStatus status = readValue(plug, value);
  if (!status) return status;
  if (const auto* real = std::get_if<double>(&value))
    result = *real;
  else if (const auto* integer = std::get_if<std::int64_t>(&value))
    result = static_cast<double>(*integer);
  else
    return MStatus::kInvalidParameter;
  return MStatus::kSuccess;
}

MStatus readInteger(const MPlug& plug, std::int64_t& result) {
  dg::Value value;
  const MStatus status = readValue(plug, value);
  if (!status) return status;
  if (const auto* integer = std::get_if<std::int64_t>(&value))
    result = *integer;
  else if (const auto* real = std::get_if<double>(&value))
    result = static_cast<std::int64_t>(*real);
  else
    return MStatus::kInvalidParameter;
  return MStatus::kSuccess;
}

MStatus writeValue(const MPlug& plug, dg::Value value) {
  const dg::Plug inner = plugOf(plug);
  if (inner.isNull()) return MStatus::kFailure;
  return toStatus(inner.node()->graph().set(inner, value));
}

/// Numbers of a numeric compound as one data value.
MStatus readCompound(const dg::Plug& plug, MObject& object) {
  std::vector<double> numbers;
  for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i) {
    double number = 0;
    const MStatus status = readReal(wrap(plug.child(static_cast<int>(i))), number);
    if (!status) return status;
    numbers.push_back(number);
  }
  object = wrap(makeNumericData(plug.attribute()->compoundType, numbers));
  return MStatus::kSuccess;
}

MStatus writeCompound(const dg::Plug& plug, const NumericData& numbers) {
  if (numbers.values.size() != plug.attribute()->children.size()) return MStatus::kInvalidParameter;
  for (std::size_t i = 0; i < numbers.values.size(); ++i) {
    const auto done = plug.node()->graph().set(plug.child(static_cast<int>(i)), numbers.values[i]);
    if (!done) return toStatus(done);
  }
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::readInteger;
using api::readReal;
using api::setStatus;
using api::writeValue;

MStatus MPlug::getValue(double& value) const {
  return readReal(*this, value);
}
MStatus MPlug::getValue(float& value) const {
  double real = 0;
  const MStatus status = readReal(*this, real);
  if (status) value = static_cast<float>(real);
  return status;
}
MStatus MPlug::getValue(MInt64& value) const {
  std::int64_t integer = 0;
  const MStatus status = readInteger(*this, integer);
  if (status) value = integer;
  return status;
}
#define HOST_PLUG_GET_INTEGER(Type)                     \
  MStatus MPlug::getValue(Type& value) const {          \
    std::int64_t integer = 0;                           \
    const MStatus status = readInteger(*this, integer); \
    if (status) value = static_cast<Type>(integer);     \
    return status;                                      \
  }
HOST_PLUG_GET_INTEGER(int)
HOST_PLUG_GET_INTEGER(short)
HOST_PLUG_GET_INTEGER(char)
#undef HOST_PLUG_GET_INTEGER
MStatus MPlug::getValue(bool& value) const {
  double real = 0;
  const MStatus status = readReal(*this, real);
  if (status) value = real != 0;
  return status;
}
MStatus MPlug::getValue(MString& value) const {
  dg::Value stored;
  const MStatus status = api::readValue(*this, stored);
  if (!status) return status;
  if (const auto* text = std::get_if<std::string>(&stored))
    value = api::toMString(*text);
  else if (std::holds_alternative<std::monostate>(stored))
    value = MString();
  else
    return MStatus::kInvalidParameter;
  return MStatus::kSuccess;
}
MStatus MPlug::getValue(MDistance& value) const {
  double cm = 0;
  const MStatus status = readReal(*this, cm);
  if (status) value = MDistance(cm, MDistance::kCentimeters);
  return status;
}
MStatus MPlug::getValue(MAngle& value) const {
  double radians = 0;
  const MStatus status = readReal(*this, radians);
  if (status) value = MAngle(radians, MAngle::kRadians);
  return status;
}
MStatus MPlug::getValue(MTime& value) const {
  double seconds = 0;
  const MStatus status = readReal(*this, seconds);
  if (status) value = api::timeOf(seconds);
  return status;
}
MStatus MPlug::getValue(MObject& value) const {
  const dg::Plug plug = api::plugOf(*this);
  if (plug.isNull()) return MStatus::kFailure;
  if (plug.isCompound() && !plug.attribute()->compoundType.empty())
    return api::readCompound(plug, value);
  dg::Value stored;
  const MStatus status = api::readValue(*this, stored);
  if (!status) return status;
  if (const auto* data = std::get_if<dg::DataPtr>(&stored); data && *data) {
    value = api::wrap(*data);
    return MStatus::kSuccess;
  }
  if (const auto* text = std::get_if<std::string>(&stored)) {
    value = api::wrap(api::makeStringData(*text));
    return MStatus::kSuccess;
  }
  value = MObject();
  return MStatus::kFailure;
}

#define HOST_PLUG_AS(Name, Type)                \
  Type MPlug::as##Name(MStatus* status) const { \
    Type value{};                               \
    const MStatus code = getValue(value);       \
    setStatus(status, code.statusCode());       \
    return value;                               \
  }
#define HOST_PLUG_AS_IN_CONTEXT(Name, Type)                          \
  HOST_PLUG_AS(Name, Type)                                           \
  Type MPlug::as##Name(MDGContext& context, MStatus* status) const { \
    MTime when;                                                      \
    std::optional<edits::AtTime> then;                               \
    if (!context.isNormal() && context.getTime(when))                \
      then.emplace(api::document(), when.as(MTime::kSeconds));       \
    return as##Name(status);                                         \
  }
HOST_PLUG_AS_IN_CONTEXT(MObject, MObject)
HOST_PLUG_AS_IN_CONTEXT(Double, double)
HOST_PLUG_AS_IN_CONTEXT(Float, float)
HOST_PLUG_AS_IN_CONTEXT(Int, int)
HOST_PLUG_AS_IN_CONTEXT(Short, short)
HOST_PLUG_AS_IN_CONTEXT(Bool, bool)
HOST_PLUG_AS_IN_CONTEXT(String, MString)
HOST_PLUG_AS(Int64, MInt64)
HOST_PLUG_AS(Char, char)
HOST_PLUG_AS(MDistance, MDistance)
HOST_PLUG_AS(MAngle, MAngle)
HOST_PLUG_AS(MTime, MTime)
#undef HOST_PLUG_AS_IN_CONTEXT
#undef HOST_PLUG_AS

MStatus MPlug::setValue(double value) const {
  return writeValue(*this, value);
}
MStatus MPlug::setValue(float value) const {
  return writeValue(*this, static_cast<double>(value));
}
MStatus MPlug::setValue(MInt64 value) const {
  return writeValue(*this, static_cast<std::int64_t>(value));
}
MStatus MPlug::setValue(int value) const {
  return writeValue(*this, std::int64_t{value});
}
MStatus MPlug::setValue(short value) const {
  return writeValue(*this, std::int64_t{value});
}
MStatus MPlug::setValue(char value) const {
  return writeValue(*this, std::int64_t{value});
}
MStatus MPlug::setValue(bool value) const {
  return writeValue(*this, std::int64_t{value ? 1 : 0});
}
MStatus MPlug::setValue(const char* value) const {
  return writeValue(*this, std::string(value ? value : ""));
}
MStatus MPlug::setValue(const MString& value) const {
  return setValue(value.asChar());
}
MStatus MPlug::setValue(const MDistance& value) const {
  return writeValue(*this, value.asCentimeters());
}
MStatus MPlug::setValue(const MAngle& value) const {
  return writeValue(*this, value.asRadians());
}
MStatus MPlug::setValue(const MTime& value) const {
  return writeValue(*this, value.as(MTime::kSeconds));
}
MStatus MPlug::setValue(const MObject& value) const {
  const auto* rep = api::objectAs<api::DataRep>(value);
  const dg::Plug plug = api::plugOf(*this);
  if (plug.isNull()) return MStatus::kFailure;
  if (!rep || !rep->data) return MStatus::kInvalidParameter;
  if (const auto* numbers = dynamic_cast<const api::NumericData*>(rep->data.get()))
    return api::writeCompound(plug, *numbers);
  if (const std::string* text = api::stringOf(rep->data)) return writeValue(*this, *text);
  return writeValue(*this, api::settled(rep->data));
}

MStatus MPlug::setMObject(const MObject& value) const {
  return setValue(value);
}
MStatus MPlug::setDouble(double value) const {
  return setValue(value);
}
MStatus MPlug::setFloat(float value) const {
  return setValue(value);
}
MStatus MPlug::setInt64(MInt64 value) const {
  return setValue(value);
}
MStatus MPlug::setInt(int value) const {
  return setValue(value);
}
MStatus MPlug::setShort(short value) const {
  return setValue(value);
}
MStatus MPlug::setChar(char value) const {
  return setValue(value);
}
MStatus MPlug::setBool(bool value) const {
  return setValue(value);
}
MStatus MPlug::setString(const MString& value) const {
  return setValue(value);
}
MStatus MPlug::setMDistance(const MDistance& value) const {
  return setValue(value);
}
MStatus MPlug::setMAngle(const MAngle& value) const {
  return setValue(value);
}
MStatus MPlug::setMTime(const MTime& value) const {
  return setValue(value);
}
