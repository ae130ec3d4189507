#include <maya/MFnNumericData.h>

#include <initializer_list>

#include "host/api/core/access.h"
#include "host/api/data/data_types.h"
#include "host/api/data/numeric_data.h"

namespace host::api {
namespace {

/// Reads as many numbers as the data holds; their kind is converted.
template <class T>
MStatus read(const MObject& object, std::initializer_list<T*> values) {
  const auto* rep = objectAs<DataRep>(object);
  const auto* data = rep ? dynamic_cast<const NumericData*>(rep->data.get()) : nullptr;
  if (!data || data->values.size() != values.size()) return MStatus::kFailure;
  for (std::size_t i = 0; i < values.size(); ++i)
    *values.begin()[i] = static_cast<T>(data->values[i]);
  return MStatus::kSuccess;
}

template <class T>
MStatus write(const MObject& object, std::initializer_list<T> values) {
  auto* rep = objectAs<DataRep>(object);
  const auto* data = rep ? dynamic_cast<const NumericData*>(rep->data.get()) : nullptr;
  if (!data || data->values.size() != values.size()) return MStatus::kFailure;
  rep->data = makeNumericData(data->kind, std::vector<double>(values.begin(), values.end()));
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::setStatus;

MObject MFnNumericData::create(Type dataType, MStatus* status) {
  api::NumericKind kind;
  if (!api::numericKind(dataType, kind) || kind.compound.empty()) {
    setStatus(status, MStatus::kInvalidParameter);
    return object_ = MObject();
  }
  setStatus(status, MStatus::kSuccess);
  const auto zeros = std::vector<double>(at(kind.count), 0.0);
  return object_ = api::wrap(api::makeNumericData(std::string(kind.compound), zeros));
}
MFnNumericData::Type MFnNumericData::numericType() {
  const auto* rep = api::objectAs<api::DataRep>(object_);
  const auto* data = rep ? dynamic_cast<const api::NumericData*>(rep->data.get()) : nullptr;
  return data ? api::numericTypeOf(std::string_view(data->kind)) : kInvalid;
}
#define HOST_NUMERIC(Type)                                     \
  MStatus MFnNumericData::getData(Type& x, Type& y) {          \
    return api::read<Type>(object_, {&x, &y});                 \
  }                                                            \
  MStatus MFnNumericData::getData(Type& x, Type& y, Type& z) { \
    return api::read<Type>(object_, {&x, &y, &z});             \
  }                                                            \
  MStatus MFnNumericData::setData(Type x, Type y) {            \
    return api::write<Type>(object_, {x, y});                  \
  }                                                            \
  MStatus MFnNumericData::setData(Type x, Type y, Type z) {    \
    return api::write<Type>(object_, {x, y, z});               \
  }
HOST_NUMERIC(short)
HOST_NUMERIC(int)
HOST_NUMERIC(float)
HOST_NUMERIC(double)
#undef HOST_NUMERIC
MStatus MFnNumericData::getData(double& x, double& y, double& z, double& w) {
  return api::read<double>(object_, {&x, &y, &z, &w});
}
MStatus MFnNumericData::setData(double x, double y, double z, double w) {
  return api::write<double>(object_, {x, y, z, w});
}
