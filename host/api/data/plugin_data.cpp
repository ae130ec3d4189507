#include "host/api/data/plugin_data.h"

#include <maya/MArgList.h>
#include <maya/MFnPluginData.h>

#include <charconv>
#include <sstream>
#include <vector>

#include "host/base/messages.h"

namespace host::api {
namespace {

std::vector<PluginDataType>& types() {
  static std::vector<PluginDataType> all;
  return all;
}

/// What the plug-in's readASCII makes of the words.
Result<dg::DataPtr> readPluginData(unsigned int id, const std::vector<dg::ForeignWord>& words) {
  const PluginDataType* type = findPluginDataType(id);
  if (!type) return fail("the plug-in of such data is not loaded");
  const MObject made = makePluginData(*type);
  MPxData* object = pluginDataOf(made);
  if (!object) return fail("'{}' makes no data", type->name);
  MArgList args;
  for (const dg::ForeignWord& word : words) {
    int whole = 0;
    const char* end = word.text.data() + word.text.size();
    const auto read = std::from_chars(word.text.data(), end, whole);
    if (word.isNumber && read.ec == std::errc() && read.ptr == end)
      args.addArg(whole);
    else if (word.isNumber)
      args.addArg(MString(word.text.c_str()).asDouble());
    else
      args.addArg(toMString(word.text));
  }
  try {
    unsigned int last = 0;
    const MStatus status = object->readASCII(args, last);
    if (!status) return fail("'{}' does not read its own data", type->name);
  } catch (...) {
    return fail("reading data of type '{}' threw an exception", type->name);
  }
  return objectAs<DataRep>(made)->data;
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
  dg::setForeignReader(type.name, [id = type.id](const std::vector<dg::ForeignWord>& words) {
    return readPluginData(id, words);
  });
  types().push_back(std::move(type));
  return {};
}
void removePluginDataType(unsigned int id) {
  if (const PluginDataType* type = findPluginDataType(id)) dg::setForeignReader(type->name, {});
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

std::optional<std::string> PluginDataHolder::written() const {
  std::ostringstream out;
  try {
    if (!object_->writeASCII(out)) return std::nullopt;
  } catch (...) {
    postMessage(MessageKind::Error, "Writing data of type '" + typeName_ + "' threw an exception");
    return std::nullopt;
  }
  return out.str();
}

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
