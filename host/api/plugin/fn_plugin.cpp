#include <maya/MFnPlugin.h>
#include <maya/MPxCommand.h>

#include <filesystem>

#include "host/api/command/command_adapter.h"
#include "host/api/plugin/loader.h"
#include "host/cmd/session.h"

using namespace host;
using api::PluginRecord;
using api::setStatus;
using Kind = api::PluginRecord::Registration::Kind;

namespace {

/// The record behind a function set; null when it is attached to nothing.
PluginRecord* recordOf(const MObject& object, MStatus* status = nullptr) {
  const auto* rep = api::objectAs<api::PluginRep>(object);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep ? rep->record.get() : nullptr;
}

void forget(std::vector<std::string>& names, const std::string& name) {
  std::erase(names, name);
}

}  // namespace

MFnPlugin::MFnPlugin() = default;
MFnPlugin::~MFnPlugin() = default;

MFnPlugin::MFnPlugin(const MObject& object, const char* vendor, const char* version,
                     const char* requiredApiVersion, MStatus* status) {
  attach(object, status);
  PluginRecord* record = recordOf(object);
  if (!record) return;
  // The set that is made at unload has the default texts; it must not overwrite those of the load.
  const auto keep = [](std::string& field, const char* text) {
    if (field.empty() || std::string_view(text) != "Unknown") field = text;
  };
  keep(record->info.vendor, vendor ? vendor : "Unknown");
  keep(record->info.version, version ? version : "Unknown");
  if (record->info.apiVersion.empty())
    record->info.apiVersion = requiredApiVersion ? requiredApiVersion : "Any";
}

MString MFnPlugin::vendor(MStatus* status) const {
  const PluginRecord* record = recordOf(object_, status);
  return record ? api::toMString(record->info.vendor) : MString();
}
MString MFnPlugin::version(MStatus* status) const {
  const PluginRecord* record = recordOf(object_, status);
  return record ? api::toMString(record->info.version) : MString();
}
MString MFnPlugin::apiVersion(MStatus* status) const {
  const PluginRecord* record = recordOf(object_, status);
  return record ? api::toMString(record->info.apiVersion) : MString();
}
MString MFnPlugin::name(MStatus* status) const {
  const PluginRecord* record = recordOf(object_, status);
  return record ? api::toMString(record->info.name) : MString();
}
MString MFnPlugin::loadPath(MStatus* status) const {
  const PluginRecord* record = recordOf(object_, status);
  return record ? api::toMString(std::filesystem::path(record->info.path).parent_path().string())
                : MString();
}
MStatus MFnPlugin::setName(const MString& name, bool) {
  PluginRecord* record = recordOf(object_);
  if (!record || name.length() == 0) return MStatus::kFailure;
  record->info.name = name.asChar();
  return MStatus::kSuccess;
}
MStatus MFnPlugin::setVersion(const MString& version) {
  PluginRecord* record = recordOf(object_);
  if (!record) return MStatus::kFailure;
  record->info.version = version.asChar();
  return MStatus::kSuccess;
}

MObject MFnPlugin::findPlugin(const MString& pluginName) {
  auto* loader = dynamic_cast<api::Loader*>(cmd::currentSession().pluginLoader.get());
  const auto record = loader ? loader->find(pluginName.asChar()) : nullptr;
  return record ? api::Access::make<MObject>(new api::PluginRep(record)) : MObject();
}

bool MFnPlugin::isNodeRegistered(const MString& typeName) {
  return cmd::currentSession().types().find(typeName.asChar()) != nullptr;
}

MStatus MFnPlugin::registerCommand(const MString& commandName, MCreatorFunction creator,
                                   MCreateSyntaxFunction createSyntax) {
  PluginRecord* record = recordOf(object_);
  if (!record || !creator) return MStatus::kInvalidParameter;
  const std::string name = commandName.asChar();
  const MSyntax syntax = createSyntax ? createSyntax() : MSyntax();
  const bool hasSyntax = createSyntax != nullptr;
  cmd::PluginCommandSpec spec;
  spec.name = name;
  spec.pluginName = record->info.name;
  spec.create = [creator, name, syntax, hasSyntax]() -> std::unique_ptr<cmd::PluginCommand> {
    std::unique_ptr<MPxCommand> object(static_cast<MPxCommand*>(creator()));
    if (!object) return nullptr;
    return std::make_unique<api::CommandAdapter>(std::move(object), name, syntax, hasSyntax);
  };
  spec.synopsis = [name, syntax] { return api::synopsisOf(name, syntax); };
  auto& commands = cmd::currentSession().commands();
  const auto added = commands.add(std::move(spec));
  if (!added) return api::toStatus(added);
  record->info.commands.push_back(name);
  record->add(Kind::Command, name, [&commands, record, name] {
    (void)commands.remove(name);
    forget(record->info.commands, name);
  });
  return MStatus::kSuccess;
}

MStatus MFnPlugin::deregisterCommand(const MString& commandName) {
  PluginRecord* record = recordOf(object_);
  return record && record->remove(Kind::Command, commandName.asChar()) ? MStatus::kSuccess
                                                                       : MStatus::kFailure;
}

MStatus MFnPlugin::registerUI(const MString& creationProc, const MString& deletionProc,
                              const MString& creationBatchProc, const MString& deletionBatchProc) {
  PluginRecord* record = recordOf(object_);
  if (!record) return MStatus::kInvalidParameter;
  record->creationProcedure = creationProc.asChar();
  record->deletionProcedure = deletionProc.asChar();
  record->batchCreationProcedure = creationBatchProc.asChar();
  record->batchDeletionProcedure = deletionBatchProc.asChar();
  return MStatus::kSuccess;
}

MStatus MFnPlugin::setUnloadCallback(MCreatorFunction callback) {
  PluginRecord* record = recordOf(object_);
  if (!record) return MStatus::kInvalidParameter;
  record->unloadCallback = callback;
  return MStatus::kSuccess;
}
