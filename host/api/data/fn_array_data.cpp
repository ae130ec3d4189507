#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnFloatArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMatrixArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnUInt64ArrayData.h>
#include <maya/MFnVectorArrayData.h>

#include <memory>

#include "host/api/core/access.h"

namespace host::api {
namespace {

struct UInt64ArrayTag {
  static constexpr std::string_view kName = "UInt64Array";
};
using UInt64ArrayData = dg::ValueData<std::vector<std::uint64_t>, UInt64ArrayTag>;

int outer(std::int32_t value) {
  return value;
}
double outer(double value) {
  return value;
}
float outer(float value) {
  return value;
}
MUint64 outer(std::uint64_t value) {
  return value;
}
MString outer(const std::string& text) {
  return toMString(text);
}
MVector outer(const math::Vec3& v) {
  return {v.x, v.y, v.z};
}
MPoint outer(const dg::Point4& p) {
  return {p.x, p.y, p.z, p.w};
}
MMatrix outer(const math::Matrix4& matrix) {
  return toMMatrix(matrix);
}

std::int32_t inner(int value) {
  return value;
}
double inner(double value) {
  return value;
}
float inner(float value) {
  return value;
}
std::uint64_t inner(MUint64 value) {
  return value;
}
std::string inner(const MString& text) {
  return toStd(text);
}
math::Vec3 inner(const MVector& v) {
  return {v.x, v.y, v.z};
}
dg::Point4 inner(const MPoint& p) {
  return {p.x, p.y, p.z, p.w};
}
math::Matrix4 inner(const MMatrix& matrix) {
  return toMatrix4(matrix);
}

template <class Payload>
const Payload* payloadOf(const MObject& object, MStatus* status = nullptr) {
  const auto* rep = objectAs<DataRep>(object);
  const auto* payload = rep ? dynamic_cast<const Payload*>(rep->data.get()) : nullptr;
  setStatus(status, payload ? MStatus::kSuccess : MStatus::kFailure);
  return payload;
}

template <class Payload, class Array>
dg::DataPtr payloadFrom(const Array& array) {
  std::remove_cv_t<decltype(Payload::value)> values;
  values.reserve(array.length());
  for (unsigned int i = 0; i < array.length(); ++i) values.push_back(inner(array[i]));
  return std::make_shared<Payload>(std::move(values));
}

template <class Payload, class Array>
Array arrayFrom(const Payload* payload) {
  Array array;
  if (!payload) return array;
  const auto count = static_cast<unsigned int>(payload->value.size());
  array.setLength(count);
  for (unsigned int i = 0; i < count; ++i) array[i] = outer(payload->value[i]);
  return array;
}

template <class Payload, class Element>
MStatus setElement(const MObject& object, const Element& element, unsigned int index) {
  const Payload* payload = payloadOf<Payload>(object);
  if (!payload) return MStatus::kFailure;
  if (index >= payload->value.size()) return MStatus::kInvalidParameter;
  auto values = payload->value;
  values[index] = inner(element);
  objectAs<DataRep>(object)->data = std::make_shared<Payload>(std::move(values));
  return MStatus::kSuccess;
}

template <class Payload, class Array>
MStatus setArray(const MObject& object, const Array& array) {
  auto* rep = objectAs<DataRep>(object);
  if (!rep) return MStatus::kFailure;
  rep->data = payloadFrom<Payload>(array);
  return MStatus::kSuccess;
}

/// The API's form of an array whose elements are handed out by reference, kept by the function set.
template <class Array>
struct FormRep final : SharedRep {
  dg::DataPtr source;
  Array array;
};
template <class Payload, class Array>
Array& formOf(const MObject& object, Handle& keeper) {
  const auto* rep = objectAs<DataRep>(object);
  auto* form = static_cast<FormRep<Array>*>(keeper.get());
  if (!form || !rep || form->source != rep->data) {
    form = new FormRep<Array>;
    keeper = Handle(form);
    if (rep) form->source = rep->data;
    form->array = arrayFrom<Payload, Array>(payloadOf<Payload>(object));
  }
  return form->array;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

#define HOST_ARRAY_DATA(Class, Payload, Array, Parameter)                              \
  MObject Class::create(MStatus* status) {                                             \
    return create(Array(), status);                                                    \
  }                                                                                    \
  MObject Class::create(const Array& in, MStatus* status) {                            \
    setStatus(status, MStatus::kSuccess);                                              \
    return object_ = api::wrap(api::payloadFrom<Payload>(in));                         \
  }                                                                                    \
  unsigned int Class::length(MStatus* status) const {                                  \
    const Payload* payload = api::payloadOf<Payload>(object_, status);                 \
    return payload ? static_cast<unsigned int>(payload->value.size()) : 0;             \
  }                                                                                    \
  MStatus Class::set(Parameter element, unsigned int index) {                          \
    return api::setElement<Payload>(object_, element, index);                          \
  }                                                                                    \
  MStatus Class::set(const Array& newArray) {                                          \
    return api::setArray<Payload>(object_, newArray);                                  \
  }                                                                                    \
  MStatus Class::copyTo(Array& array) const {                                          \
    MStatus status;                                                                    \
    array = api::arrayFrom<Payload, Array>(api::payloadOf<Payload>(object_, &status)); \
    return status;                                                                     \
  }                                                                                    \
  Array Class::array(MStatus* status) {                                                \
    return api::arrayFrom<Payload, Array>(api::payloadOf<Payload>(object_, status));   \
  }

#define HOST_BY_VALUE(Class, Payload, Type)                                           \
  Type Class::operator[](unsigned int index) const {                                  \
    const Payload* payload = api::payloadOf<Payload>(object_);                        \
    return payload && index < payload->value.size() ? payload->value[index] : Type{}; \
  }
#define HOST_BY_REFERENCE(Class, Payload, Array, Type)                                           \
  const Type& Class::operator[](unsigned int index) const {                                      \
    static const Type nothing;                                                                   \
    const Array& form = api::formOf<Payload, Array>(object_, const_cast<Class*>(this)->handle_); \
    return index < form.length() ? form[index] : nothing;                                        \
  }

HOST_ARRAY_DATA(MFnIntArrayData, dg::IntArrayData, MIntArray, int)
HOST_ARRAY_DATA(MFnDoubleArrayData, dg::DoubleArrayData, MDoubleArray, double)
HOST_ARRAY_DATA(MFnFloatArrayData, dg::FloatArrayData, MFloatArray, float)
HOST_ARRAY_DATA(MFnUInt64ArrayData, api::UInt64ArrayData, MUint64Array, MUint64)
HOST_ARRAY_DATA(MFnStringArrayData, dg::StringArrayData, MStringArray, const MString&)
HOST_ARRAY_DATA(MFnVectorArrayData, dg::VectorArrayData, MVectorArray, const MVector&)
HOST_ARRAY_DATA(MFnPointArrayData, dg::PointArrayData, MPointArray, const MPoint&)
HOST_ARRAY_DATA(MFnMatrixArrayData, dg::MatrixArrayData, MMatrixArray, const MMatrix&)
HOST_BY_VALUE(MFnIntArrayData, dg::IntArrayData, int)
HOST_BY_VALUE(MFnDoubleArrayData, dg::DoubleArrayData, double)
HOST_BY_VALUE(MFnFloatArrayData, dg::FloatArrayData, float)
HOST_BY_VALUE(MFnUInt64ArrayData, api::UInt64ArrayData, MUint64)
HOST_BY_REFERENCE(MFnStringArrayData, dg::StringArrayData, MStringArray, MString)
HOST_BY_REFERENCE(MFnVectorArrayData, dg::VectorArrayData, MVectorArray, MVector)
HOST_BY_REFERENCE(MFnPointArrayData, dg::PointArrayData, MPointArray, MPoint)
HOST_BY_REFERENCE(MFnMatrixArrayData, dg::MatrixArrayData, MMatrixArray, MMatrix)
