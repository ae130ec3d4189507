#include <cstdlib>
#include <filesystem>

#include "host/builtins/common/command.h"
#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::Project;
using workspace::workspaceOf;

Project& projectOf(Context& context) {
  Project& project = workspaceOf(context.session).project;
  std::error_code ignored;
  if (project.root.empty()) project.root = std::filesystem::current_path(ignored);
  return project;
}

CommandResult queryWorkspace(Project& project, const ParsedArgs& args) {
  std::string root = project.root.generic_string();
  if (!root.ends_with('/')) root += '/';
  if (args.has("rootDirectory") || args.has("fullName")) return mel::Value(root);
  if (args.has("directory")) return mel::Value(root);
  if (args.has("active") || args.has("list"))
    return toValue(
        {project.root.filename().empty() ? root : project.root.filename().generic_string()});
  if (args.has("fileRule")) {
    std::vector<std::string> pairs;
    for (const auto& [rule, folder] : project.rules) pairs.insert(pairs.end(), {rule, folder});
    return toValue(std::move(pairs));
  }
  return mel::Value(root);
}

CommandResult projectCommand(Context& context, const ParsedArgs& args) {
  Project& space = projectOf(context);
  if (args.isQuery()) return queryWorkspace(space, args);
  std::error_code problem;
  if (args.has("expandName"))
    return mel::Value((space.root / args.text("expandName")).lexically_normal().generic_string());
  if (args.has("fileRuleEntry")) {
    for (const auto& [rule, folder] : space.rules)
      if (rule == args.text("fileRuleEntry")) return mel::Value(folder);
    return mel::Value("");
  }
  if (args.has("projectPath")) return mel::Value(space.root.generic_string());
  if (args.has("create")) {
    std::filesystem::create_directories(space.root / args.text("create"), problem);
    if (problem)
      return fail("workspace: '{}' can't be made: {}", args.text("create"), problem.message());
    return mel::Value();
  }
  if (args.has("fileRule")) {
    const std::string rule = args.text("fileRule"), folder = args.text("fileRule", {}, 1);
    std::erase_if(space.rules, [&](const auto& each) { return each.first == rule; });
    space.rules.emplace_back(rule, folder);
    return mel::Value();
  }
  const std::string folder = args.has("directory") ? args.text("directory") : args.firstObject();
  if (folder.empty()) return mel::Value();
  const std::filesystem::path path = space.root / folder;
  if (!std::filesystem::is_directory(path, problem))
    return fail("workspace: there is no folder '{}'.", folder);
  space.root = path.lexically_normal();
  return mel::Value();
}

CommandResult refresh(Context& context, const ParsedArgs&) {
  context.session.loop().redraw();
  return mel::Value();
}

CommandResult quit(Context& context, const ParsedArgs& args) {
  if (!args.has("abort")) context.session.scriptJobs().triggerEvent("quitApplication");
  workspaceOf(context.session).quitsAtOnce = args.has("force") || args.has("abort");
  context.session.isQuitting = true;
  context.session.interrupt();  // what stands behind it in the script doesn't run any more
  context.session.exitStatus = args.integer("exitCode", 0);
  return mel::Value();
}

CommandResult commandEcho(Context& context, const ParsedArgs& args) {
  bool& isOn = workspaceOf(context.session).echoesCommands;
  if (args.isQuery()) return mel::Value(args.has("state") && isOn);
  if (args.has("state")) isOn = args.boolean("state");
  return mel::Value();
}

CommandResult internalVar(Context&, const ParsedArgs& args) {
  const char* home = std::getenv("MAYA_APP_DIR");
  if (!home) home = std::getenv("HOME");
  const std::string root = std::string(home ? home : ".") + "/";
  std::error_code ignored;
  if (args.has("userTmpDir"))
    return mel::Value(std::filesystem::temp_directory_path(ignored).generic_string() + "/");
  if (args.has("userScriptDir")) return mel::Value(root + "scripts/");
  if (args.has("userPrefDir")) return mel::Value(root + "prefs/");
  if (args.has("userBitmapsDir")) return mel::Value(root + "prefs/icons/");
  if (args.has("userShelfDir")) return mel::Value(root + "prefs/shelves/");
  if (args.has("userWorkspaceDir")) return mel::Value(root + "projects/");
  return mel::Value(root);
}

}  // namespace

void registerProgram(CommandRegistry& registry) {
  defineQuery(registry, "workspace",
              Syntax()
                  .flag("rd", "rootDirectory")
                  .flag("fn", "fullName")
                  .flag("dir", "directory", {ArgType::String})
                  .flag("act", "active")
                  .flag("l", "list")
                  .flag("o", "openWorkspace")
                  .flag("n", "newWorkspace")
                  .flag("s", "saveWorkspace")
                  .flag("u", "update")
                  .flag("en", "expandName", {ArgType::String})
                  .flag("pp", "projectPath", {ArgType::String})
                  .flag("cr", "create", {ArgType::String})
                  .flag("fr", "fileRule", {ArgType::String, ArgType::String})
                  .flag("fre", "fileRuleEntry", {ArgType::String})
                  .editable()
                  .queryable()
                  .strings(0, 1),
              projectCommand);
  defineQuery(
      registry, "refresh",
      Syntax().flag("f", "force").flag("cv", "currentView").flag("su", "suspend", {ArgType::Bool}),
      refresh);
  defineQuery(registry, "quit",
              Syntax().flag("f", "force").flag("a", "abort").flag("ec", "exitCode", {ArgType::Int}),
              quit);
  defineQuery(registry, "commandEcho",
              Syntax()
                  .flag("st", "state", {ArgType::Bool})
                  .flag("ln", "lineNumbers", {ArgType::Bool})
                  .flag("f", "filter", {ArgType::String})
                  .queryable(),
              commandEcho);
  defineQuery(registry, "internalVar",
              Syntax()
                  .flag("uad", "userAppDir")
                  .flag("usd", "userScriptDir")
                  .flag("upd", "userPrefDir")
                  .flag("utd", "userTmpDir")
                  .flag("ubd", "userBitmapsDir")
                  .flag("ush", "userShelfDir")
                  .flag("uwd", "userWorkspaceDir"),
              internalVar);
}

}  // namespace host::builtins
