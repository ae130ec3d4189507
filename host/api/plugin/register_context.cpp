#include <maya/MFnPlugin.h>
#include <maya/MPxContextCommand.h>
#include <maya/MPxToolCommand.h>

#include <exception>

#include "host/api/command/command_adapter.h"
#include "host/api/plugin/plugin_record.h"
#include "host/api/tool/context_rep.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

using ContextClassPtr = std::shared_ptr<const ContextClass>;
using Kind = PluginRecord::Registration::Kind;

/// One call of a context command.
class ContextCall final : public cmd::PluginCommand {
 public:
  explicit ContextCall(ContextClassPtr contextClass) : class_(std::move(contextClass)) {}

  Result<void> doIt(std::span<const mel::Value> arguments) override;
  Result<void> undoIt() override { return {}; }
  Result<void> redoIt() override { return {}; }
  [[nodiscard]] bool isUndoable() const override { return false; }
  [[nodiscard]] mel::Value result() const override { return result_; }

 private:
  Result<void> create(std::unique_ptr<MPxContextCommand> command, const ParsedRep& parsed);
  Result<void> work(ContextAdapter& adapter, const std::vector<mel::Value>& words,
                    const ParsedRep& parsed);
  void editImages(tools::ToolContext& tool, const ParsedRep& parsed);
  bool queryOwn(const tools::ToolContext& tool, const ParsedRep& parsed);

  ContextClassPtr class_;
  mel::Value result_;
};

constexpr const char* kImageFlags[] = {"image1", "image2", "image3"};

/// The syntax of a context command: the plug-in's flags, and those that every context command has
/// unless the plug-in uses the name itself.
MSyntax syntaxFor(MPxContextCommand& command) {
  auto& rep = Access::writable<ContextCommandRep>(command);
  rep.syntax = Access::make<MSyntax>(new SyntaxRep());
  (void)command.appendSyntax();
  MSyntax syntax = rep.syntax;
  syntax.addFlag("-ex", "-exists");
  syntax.addFlag("-n", "-name", MSyntax::kString);
  syntax.addFlag("-i1", "-image1", MSyntax::kString);
  syntax.addFlag("-i2", "-image2", MSyntax::kString);
  syntax.addFlag("-i3", "-image3", MSyntax::kString);
  syntax.enableEdit(true);
  syntax.enableQuery(true);
  if (syntax.objectFormat() == MSyntax::kNone) syntax.setObjectType(MSyntax::kStringObjects, 0, 1);
  return syntax;
}

const ParsedRep::Use* useOf(const ParsedRep& parsed, const char* flag) {
  for (const ParsedRep::Use& use : parsed.uses)
    if (use.flag == parsed.syntax.find(flag)) return &use;
  return nullptr;
}

std::string textOf(const ParsedRep& parsed, const ParsedRep::Use& use) {
  return use.argumentCount ? parsed.words[use.firstArgument].toText().value_or("") : std::string();
}

/// The flags given are a plug-in's, not only those that the host answers.
bool hasOtherFlags(const ParsedRep& parsed) {
  for (const ParsedRep::Use& use : parsed.uses) {
    const std::string& name = use.flag->longName;
    if (name != "exists" && name != "name" && name.rfind("image", 0) != 0) return true;
  }
  return false;
}

Result<void> ContextCall::doIt(std::span<const mel::Value> arguments) {
  const std::vector<mel::Value> words(arguments.begin(), arguments.end());
  std::unique_ptr<MPxContextCommand> command(static_cast<MPxContextCommand*>(class_->creator()));
  if (!command) return fail("{}: the plug-in made no command object", class_->commandName);
  const MSyntax syntax = syntaxFor(*command);
  const std::unique_ptr<ParsedRep> parsed(parseWords(syntaxOf(syntax), words));
  if (!parsed->error.empty()) return fail("{}: {}", class_->commandName, parsed->error);
  Access::writable<ContextCommandRep>(*command).words = wrap(words);

  const std::string name = parsed->objects.empty() ? std::string() : parsed->objects.front();
  const auto found = std::dynamic_pointer_cast<ContextAdapter>(
      workspace::workspaceOf(cmd::currentSession()).toolbox.find(name));
  const bool isOurs = found && found->contextClass().commandName == class_->commandName;
  if (useOf(*parsed, "exists")) {
    result_ = mel::Value(isOurs);
    return {};
  }
  if (!parsed->isEdit && !parsed->isQuery) return create(std::move(command), *parsed);
  if (name.empty())
    return fail("{}: name the context to {}", class_->commandName,
                parsed->isEdit ? "edit" : "query");
  if (!isOurs)
    return fail(ErrorKind::NotFound, "{}: Object '{}' not found.", class_->commandName, name);
  return work(*found, words, *parsed);
}

Result<void> ContextCall::create(std::unique_ptr<MPxContextCommand> command,
                                 const ParsedRep& parsed) {
  tools::ToolRegistry& registry = workspace::workspaceOf(cmd::currentSession()).toolbox;
  const ParsedRep::Use* named = useOf(parsed, "name");
  std::string name = !parsed.objects.empty() ? parsed.objects.front()
                     : named                 ? textOf(parsed, *named)
                                             : "";
  if (name.empty()) name = registry.uniqueName(class_->commandName);
  if (registry.find(name))
    return fail(ErrorKind::BadArgument, "{}: Object's name '{}' is not unique.",
                class_->commandName, name);
  std::unique_ptr<MPxContext> context(command->makeObj());
  if (!context) return fail("{}: the plug-in made no context", class_->commandName);
  auto adapter = std::make_shared<ContextAdapter>(std::move(command), std::move(context), class_);
  editImages(*adapter, parsed);
  if (hasOtherFlags(parsed) && adapter->command().doEditFlags() != MStatus::kSuccess)
    return fail("{}: the flags could not be applied", class_->commandName);
  HOST_TRY(registry.add(name, std::move(adapter)));
  result_ = mel::Value(name);
  return {};
}

void ContextCall::editImages(tools::ToolContext& tool, const ParsedRep& parsed) {
  for (std::size_t i = 0; i < tool.images.size(); ++i)
    if (const auto* use = useOf(parsed, kImageFlags[i])) tool.images[i] = textOf(parsed, *use);
}

bool ContextCall::queryOwn(const tools::ToolContext& tool, const ParsedRep& parsed) {
  for (std::size_t i = 0; i < tool.images.size(); ++i)
    if (useOf(parsed, kImageFlags[i])) {
      result_ = mel::Value(tool.images[i]);
      return true;
    }
  return false;
}

Result<void> ContextCall::work(ContextAdapter& adapter, const std::vector<mel::Value>& words,
                               const ParsedRep& parsed) {
  if (parsed.isQuery && queryOwn(adapter, parsed)) return {};
  if (parsed.isEdit) editImages(adapter, parsed);
  if (!hasOtherFlags(parsed)) return {};
  auto& rep = Access::writable<ContextCommandRep>(adapter.command());
  rep.words = wrap(words);
  rep.result = mel::Value();
  const MStatus status =
      parsed.isEdit ? adapter.command().doEditFlags() : adapter.command().doQueryFlags();
  if (status != MStatus::kSuccess)
    return fail("{}: the flags could not be {}: {}", class_->commandName,
                parsed.isEdit ? "applied" : "read", status.errorString().asChar());
  result_ = rep.result;
  return {};
}

/// Contexts of a class must not outlive the module that their code is in.
void dropContexts(const std::string& commandName) {
  tools::ToolRegistry& registry = workspace::workspaceOf(cmd::currentSession()).toolbox;
  for (const std::string& name : registry.names()) {
    const auto adapter = std::dynamic_pointer_cast<ContextAdapter>(registry.find(name));
    if (adapter && adapter->contextClass().commandName == commandName) (void)registry.remove(name);
  }
}

MStatus registerContext(PluginRecord* record, ContextClass contextClass) {
  if (!record || !contextClass.creator) return MStatus::kInvalidParameter;
  const std::string name = contextClass.commandName;
  const auto shared = std::make_shared<const ContextClass>(std::move(contextClass));
  cmd::PluginCommandSpec spec;
  spec.name = name;
  spec.pluginName = record->info.name;
  spec.create = [shared]() -> std::unique_ptr<cmd::PluginCommand> {
    return std::make_unique<ContextCall>(shared);
  };
  spec.synopsis = [shared] {
    const std::unique_ptr<MPxContextCommand> command(
        static_cast<MPxContextCommand*>(shared->creator()));
    return command ? synopsisOf(shared->commandName, syntaxFor(*command)) : std::string();
  };
  auto& commands = cmd::currentSession().commands();
  if (const auto added = commands.add(std::move(spec)); !added) return toStatus(added);
  record->info.commands.push_back(name);
  record->add(Kind::Context, name, [&commands, record, name] {
    dropContexts(name);
    (void)commands.remove(name);
    std::erase(record->info.commands, name);
  });
  return MStatus::kSuccess;
}

PluginRecord* recordOf(const MObject& object) {
  const auto* rep = objectAs<PluginRep>(object);
  return rep ? rep->record.get() : nullptr;
}

}  // namespace
}  // namespace host::api

using namespace host;
using Kind = api::PluginRecord::Registration::Kind;

MStatus MFnPlugin::registerContextCommand(const MString& commandName, MCreatorFunction creator) {
  api::ContextClass contextClass;
  contextClass.commandName = api::toStd(commandName);
  contextClass.creator = creator;
  return api::registerContext(api::recordOf(object_), std::move(contextClass));
}

MStatus MFnPlugin::registerContextCommand(const MString& commandName, MCreatorFunction creator,
                                          const MString& toolCommandName,
                                          MCreatorFunction toolCreator,
                                          MCreateSyntaxFunction toolSyntax) {
  if (!toolCreator) return MStatus::kInvalidParameter;
  api::ContextClass contextClass;
  contextClass.commandName = api::toStd(commandName);
  contextClass.creator = creator;
  contextClass.toolCommandName = api::toStd(toolCommandName);
  contextClass.toolCreator = toolCreator;
  contextClass.hasToolSyntax = toolSyntax != nullptr;
  if (toolSyntax) contextClass.toolSyntax = toolSyntax();
  const MStatus registered = api::registerContext(api::recordOf(object_), std::move(contextClass));
  if (registered != MStatus::kSuccess) return registered;
  const MStatus tool = registerCommand(toolCommandName, toolCreator, toolSyntax);
  if (tool != MStatus::kSuccess) (void)deregisterContextCommand(commandName);
  return tool;
}

MStatus MFnPlugin::deregisterContextCommand(const MString& commandName) {
  api::PluginRecord* record = api::recordOf(object_);
  return record && record->remove(Kind::Context, commandName.asChar()) ? MStatus::kSuccess
                                                                       : MStatus::kFailure;
}

MStatus MFnPlugin::deregisterContextCommand(const MString& commandName,
                                            const MString& toolCommandName) {
  const MStatus context = deregisterContextCommand(commandName);
  const MStatus tool = deregisterCommand(toolCommandName);
  return context != MStatus::kSuccess ? context : tool;
}
