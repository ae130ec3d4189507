#include "host/api/data/plugin_data.h"

#include <maya/MArgList.h>
#include <maya/MFnPluginData.h>

#include <vector>

#include "host/base/messages.h"

namespace host::api {
namespace {

std::vector<PluginDataType>& types() {
  static std::vector<PluginDataType> all;
  return all;
}

/// Leads from a plug-in's data object back to the payload that owns it.
struct DataBackRep final : SharedRep {
  std::weak_ptr<const dg::Data> holder;
};

}  // namespace

Result<void> addPluginDataType(PluginDataType type) {
  if (findPluginDataType(type.name))
    return fail(ErrorKind::BadArgument, "A data type named '{}' is registered already", type.name);
  if (findPluginDataType(type.id))
    return fail("The id {:#x} of data type '{}' is taken", type.id, type.name);
  types().push_back(std::move(type));
  return {};
}
void removePluginDataType(unsigned int id) {
  std::erase_if(types(), [id](const PluginDataType& type) { return type.id == id; });
}
const PluginDataType* findPluginDataType(unsigned int id) {
  for (const PluginDataType& type : types())
    if (type.id == id) return &type;
  return nullptr;
}
const PluginDataType* findPluginDataType(std::string_view name) {
  for (const PluginDataType& type : types())
    if (type.name == name) return &type;
  return nullptr;
}

PluginDataHolder::PluginDataHolder(MPxData* objectIn) : object_(objectIn) {
  const PluginDataType* type = findPluginDataType(objectIn->typeId().id());
  typeName_ = type ? type->name : toStd(objectIn->name());
}
PluginDataHolder::~PluginDataHolder() = default;

MObject wrapPluginData(MPxData* object) {
  Handle& handle = Access::handle(*object);
  if (const auto* back = static_cast<const DataBackRep*>(handle.get()))
    if (const auto holder = back->holder.lock()) return wrap(holder);
  const auto holder = std::make_shared<const PluginDataHolder>(object);
  auto* back = new DataBackRep;
  back->holder = holder;
  handle = Handle(back);
  return wrap(dg::DataPtr(holder));
}

MObject makePluginData(const PluginDataType& type) {
  try {
    auto* object = static_cast<MPxData*>(type.creator());
    if (object) return wrapPluginData(object);
  } catch (...) {
    postMessage(MessageKind::Error, "Making data of type '" + type.name + "' threw an exception");
  }
  return MObject();
}

MPxData* pluginDataOf(const MObject& data) {
  const auto* rep = objectAs<DataRep>(data);
  const auto* holder = rep ? dynamic_cast<const PluginDataHolder*>(rep->data.get()) : nullptr;
  return holder ? holder->object() : nullptr;
}

}  // namespace host::api

using namespace host;
using api::setStatus;

MPxData::MPxData() = default;
MPxData::~MPxData() = default;
MStatus MPxData::readASCII(const MArgList&, unsigned int&) {
  return MStatus::kUnknownParameter;
}
MStatus MPxData::readBinary(std::istream&, unsigned int) {
  return MStatus::kUnknownParameter;
}
MStatus MPxData::writeASCII(std::ostream&) {
  return MStatus::kUnknownParameter;
}
MStatus MPxData::writeBinary(std::ostream&) {
  return MStatus::kUnknownParameter;
}
MObject MPxData::thisMObject() const {
  const auto* back = static_cast<const api::DataBackRep*>(handle_.get());
  const auto holder = back ? back->holder.lock() : nullptr;
  return holder ? api::wrap(holder) : MObject();
}

MObject MFnPluginData::create(const MTypeId& id, MStatus* status) {
  const api::PluginDataType* type = api::findPluginDataType(id.id());
  object_ = type ? api::makePluginData(*type) : MObject();
  setStatus(status, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return object_;
}
MTypeId MFnPluginData::typeId(MStatus* status) const {
  const MPxData* object = constData(status);
  return object ? object->typeId() : MTypeId();
}
const MPxData* MFnPluginData::constData(MStatus* status) const {
  const MPxData* object = api::pluginDataOf(object_);
  setStatus(status, object ? MStatus::kSuccess : MStatus::kFailure);
  return object;
}
MPxData* MFnPluginData::data(MStatus* status) {
  MPxData* object = api::pluginDataOf(object_);
  setStatus(status, object ? MStatus::kSuccess : MStatus::kFailure);
  return object;
}
