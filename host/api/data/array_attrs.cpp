#include "host/api/data/array_attrs.h"

#include <maya/MFnArrayAttrsData.h>

#include <algorithm>
#include <memory>

#include "host/api/core/access.h"
#include "host/scene/array_attrs_data.h"

namespace host::api {
namespace {

using scene::ArrayAttrsData;
using Fn = MFnArrayAttrsData;

template <class Element>
std::vector<Element> valuesOf(const Handle& elements);
template <>
std::vector<math::Vec3> valuesOf(const Handle& elements) {
  std::vector<math::Vec3> values;
  for (const MVector& v : *static_cast<const SharedElements<MVector>*>(elements.get()))
    values.emplace_back(v.x, v.y, v.z);
  return values;
}
template <>
std::vector<std::string> valuesOf(const Handle& elements) {
  std::vector<std::string> values;
  for (const MString& text : *static_cast<const SharedElements<MString>*>(elements.get()))
    values.push_back(toStd(text));
  return values;
}
template <class Element>
std::vector<Element> valuesOf(const Handle& elements) {
  const auto& all = *static_cast<const SharedElements<Element>*>(elements.get());
  return {all.begin(), all.end()};
}

/// Arrays whose elements API arrays show: they change while a plug-in holds such arrays.
class LiveArrayAttrs final : public ArrayAttrsData {
 public:
  struct Named {
    std::string name;
    Fn::Type type;
    Handle elements;
  };

  [[nodiscard]] std::vector<ArrayAttrsData::Named> arrays() const override {
    std::vector<ArrayAttrsData::Named> result;
    for (const Named& each : all) result.emplace_back(each.name, snapshot(each));
    return result;
  }
  [[nodiscard]] Named* find(std::string_view name) {
    const auto found = std::ranges::find(all, name, &Named::name);
    return found == all.end() ? nullptr : &*found;
  }
  std::vector<Named> all;

 private:
  static Array snapshot(const Named& each) {
    switch (each.type) {
      case Fn::kVectorArray:
        return valuesOf<math::Vec3>(each.elements);
      case Fn::kDoubleArray:
        return valuesOf<double>(each.elements);
      case Fn::kIntArray:
        return valuesOf<std::int32_t>(each.elements);
      default:
        return valuesOf<std::string>(each.elements);
    }
  }
};

struct Kind {
  Fn::Type type;
  Handle (*make)();
};
template <class Array>
Kind kindOf();
#define HOST_ARRAY_KIND(Array, Element, value)                              \
  template <>                                                               \
  Kind kindOf<Array>() {                                                    \
    return {Fn::value, [] { return Handle(new SharedElements<Element>); }}; \
  }
HOST_ARRAY_KIND(MVectorArray, MVector, kVectorArray)
HOST_ARRAY_KIND(MDoubleArray, double, kDoubleArray)
HOST_ARRAY_KIND(MIntArray, int, kIntArray)
HOST_ARRAY_KIND(MStringArray, MString, kStringArray)
#undef HOST_ARRAY_KIND

/// Adds an array of a name and shows it.
template <class Array>
Array added(LiveArrayAttrs& live, std::string name) {
  const Kind kind = kindOf<Array>();
  live.all.push_back({std::move(name), kind.type, kind.make()});
  return Access::shown<Array>(live.all.back().elements);
}

void addCopy(LiveArrayAttrs& live, const ArrayAttrsData::Named& named) {
  const auto& [name, array] = named;
  if (const auto* vectors = std::get_if<std::vector<math::Vec3>>(&array)) {
    auto shown = added<MVectorArray>(live, name);
    for (const math::Vec3& v : *vectors) shown.append(MVector(v.x, v.y, v.z));
  } else if (const auto* numbers = std::get_if<std::vector<double>>(&array)) {
    auto shown = added<MDoubleArray>(live, name);
    for (const double each : *numbers) shown.append(each);
  } else if (const auto* integers = std::get_if<std::vector<std::int32_t>>(&array)) {
    auto shown = added<MIntArray>(live, name);
    for (const std::int32_t each : *integers) shown.append(each);
  } else if (const auto* texts = std::get_if<std::vector<std::string>>(&array)) {
    auto shown = added<MStringArray>(live, name);
    for (const std::string& each : *texts) shown.append(toMString(each));
  }
}

/// The arrays behind an object for handing out; those of a stored value are copied first.
LiveArrayAttrs* liveOf(const MObject& object) {
  auto* rep = objectAs<DataRep>(object);
  const auto* data = rep ? dynamic_cast<const ArrayAttrsData*>(rep->data.get()) : nullptr;
  if (!data) return nullptr;
  if (!dynamic_cast<const LiveArrayAttrs*>(data)) {
    auto live = std::make_shared<LiveArrayAttrs>();
    for (const ArrayAttrsData::Named& named : data->arrays()) addCopy(*live, named);
    rep->data = std::move(live);
  }
  // Made by this file as changeable, and handed on as payload of the graph.
  return const_cast<LiveArrayAttrs*>(dynamic_cast<const LiveArrayAttrs*>(rep->data.get()));
}

template <class Array>
Array arrayOf(const MObject& object, const MString& name, bool isMade, MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  LiveArrayAttrs* live = liveOf(object);
  const std::string wanted = toStd(name);
  if (const LiveArrayAttrs::Named* found = live ? live->find(wanted) : nullptr) {
    if (found->type == kindOf<Array>().type) return Access::shown<Array>(found->elements);
  } else if (live && isMade && !wanted.empty()) {
    return added<Array>(*live, wanted);
  }
  setStatus(status, live ? MStatus::kInvalidParameter : MStatus::kFailure);
  return {};
}

}  // namespace

dg::Value settled(dg::Value value) {
  if (const auto* live = dg::dataAs<LiveArrayAttrs>(value))
    return dg::DataPtr(std::make_shared<scene::StoredArrayAttrs>(live->arrays()));
  return value;
}

}  // namespace host::api

using namespace host;
using api::setStatus;

MObject MFnArrayAttrsData::create(MStatus* status) {
  setStatus(status, MStatus::kSuccess);
  return object_ = api::wrap(dg::DataPtr(std::make_shared<api::LiveArrayAttrs>()));
}
MStatus MFnArrayAttrsData::clear() {
  api::LiveArrayAttrs* live = api::liveOf(object_);
  if (!live) return MStatus::kFailure;
  live->all.clear();
  return MStatus::kSuccess;
}
unsigned int MFnArrayAttrsData::count() const {
  const api::LiveArrayAttrs* live = api::liveOf(object_);
  return live ? static_cast<unsigned int>(live->all.size()) : 0;
}
MStringArray MFnArrayAttrsData::list(MStatus* status) const {
  const api::LiveArrayAttrs* live = api::liveOf(object_);
  setStatus(status, live ? MStatus::kSuccess : MStatus::kFailure);
  MStringArray names;
  if (live)
    for (const auto& each : live->all) names.append(api::toMString(each.name));
  return names;
}
bool MFnArrayAttrsData::checkArrayExist(const MString& attrName, Type& arrayType,
                                        MStatus* status) const {
  api::LiveArrayAttrs* live = api::liveOf(object_);
  setStatus(status, live ? MStatus::kSuccess : MStatus::kFailure);
  const auto* found = live ? live->find(api::toStd(attrName)) : nullptr;
  arrayType = found ? found->type : kInvalid;
  return found != nullptr;
}

#define HOST_NAMED_ARRAY(Array, make, get)                                  \
  Array MFnArrayAttrsData::make(const MString& attrName, MStatus* status) { \
    return api::arrayOf<Array>(object_, attrName, true, status);            \
  }                                                                         \
  Array MFnArrayAttrsData::get(const MString& attrName, MStatus* status) {  \
    return api::arrayOf<Array>(object_, attrName, false, status);           \
  }
HOST_NAMED_ARRAY(MVectorArray, vectorArray, getVectorData)
HOST_NAMED_ARRAY(MDoubleArray, doubleArray, getDoubleData)
HOST_NAMED_ARRAY(MIntArray, intArray, getIntData)
HOST_NAMED_ARRAY(MStringArray, stringArray, getStringData)
#undef HOST_NAMED_ARRAY
