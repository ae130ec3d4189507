// runTimeCommand: commands of scripts, for menus, shelves and hot keys.
#include <algorithm>
#include <map>
#include <set>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

struct UserCommand {
  std::string annotation, category = "User", script, keywords, tags;
  bool isDefault = false;
};
struct UserCommands {
  std::map<std::string, UserCommand, std::less<>> byName;
  /// Those that scripts can call. What was deleted stays callable, to say so: a script may hold on
  /// to it.
  std::set<std::string, std::less<>> registered;
};

UserCommands& commandsOf(Context& context) {
  return workspaceOf(context.session).kept<UserCommands>();
}

Result<mel::Value> runScript(Context& context, const std::string& name) {
  const auto& all = commandsOf(context).byName;
  const auto found = all.find(name);
  if (found == all.end()) return fail("{}: this command was deleted.", name);
  const std::string script = found->second.script;  // it may edit or delete its own command
  return context.session.interpreter().execute(script);
}

void apply(const ParsedArgs& args, UserCommand& command) {
  for (const auto& [flag, slot] :
       {std::pair{"annotation", &command.annotation}, std::pair{"category", &command.category},
        std::pair{"command", &command.script}, std::pair{"keywords", &command.keywords},
        std::pair{"tags", &command.tags}})
    if (args.has(flag)) *slot = args.text(flag);
  if (args.has("default")) command.isDefault = args.boolean("default");
}

CommandResult listed(const UserCommands& commands, const ParsedArgs& args) {
  std::vector<std::string> names;
  for (const auto& [name, command] : commands.byName)
    if (args.has("commandArray") || args.has("numberOfCommands") ||
        command.isDefault == args.has("defaultCommandArray"))
      names.push_back(name);
  if (args.has("numberOfCommands") || args.has("numberOfUserCommands"))
    return mel::Value(static_cast<std::int32_t>(names.size()));
  return toValue(std::move(names));
}

CommandResult query(Context& context, const ParsedArgs& args, const std::string& name) {
  const UserCommands& commands = commandsOf(context);
  for (const char* flag : {"commandArray", "userCommandArray", "defaultCommandArray",
                           "numberOfCommands", "numberOfUserCommands"})
    if (args.has(flag)) return listed(commands, args);
  const auto found = commands.byName.find(name);
  if (found == commands.byName.end())
    return fail(ErrorKind::NotFound, "runTimeCommand: Object '{}' not found.", name);
  const UserCommand& command = found->second;
  if (args.has("annotation")) return mel::Value(command.annotation);
  if (args.has("category")) return mel::Value(command.category);
  if (args.has("command")) return mel::Value(command.script);
  if (args.has("keywords")) return mel::Value(command.keywords);
  if (args.has("tags")) return mel::Value(command.tags);
  if (args.has("default")) return mel::Value(command.isDefault);
  return fail("runTimeCommand: say which flag to query.");
}

CommandResult runTimeCommand(Context& context, const ParsedArgs& args) {
  auto& all = commandsOf(context).byName;
  const std::string name = args.firstObject();
  if (args.isQuery()) return query(context, args, name);
  if (args.has("exists")) return mel::Value(all.contains(name));
  if (name.empty()) return fail("runTimeCommand: name the command.");
  const auto found = all.find(name);
  if (args.isEdit()) {
    if (found == all.end())
      return fail(ErrorKind::NotFound, "runTimeCommand: Object '{}' not found.", name);
    if (args.has("delete")) {
      all.erase(found);
      return mel::Value(name);
    }
    apply(args, found->second);
    return mel::Value(name);
  }
  if (found != all.end())
    return fail("runTimeCommand: there is a command '{}' already: edit it with -e.", name);
  UserCommand made;
  apply(args, made);
  auto& registered = commandsOf(context).registered;
  if (!registered.contains(name))
    HOST_TRY(context.session.commands().add(
        {name, Syntax().about(made.annotation.empty() ? "Runs a script." : made.annotation),
         [name](Context& at, const ParsedArgs&) { return runScript(at, name); }}));
  registered.insert(name);
  all[name] = std::move(made);
  return mel::Value(name);
}

}  // namespace

void registerUserCommands(CommandRegistry& registry) {
  defineQuery(registry, "runTimeCommand",
              Syntax()
                  .flag("ann", "annotation", {ArgType::String})
                  .flag("cat", "category", {ArgType::String})
                  .flag("c", "command", {ArgType::Script})
                  .flag("kw", "keywords", {ArgType::String})
                  .flag("tg", "tags", {ArgType::String})
                  .flag("d", "default", {ArgType::Bool})
                  .flag("del", "delete", {}, kEdit)
                  .flag("ex", "exists")
                  .flag("ca", "commandArray", {}, kQuery)
                  .flag("uca", "userCommandArray", {}, kQuery)
                  .flag("dca", "defaultCommandArray", {}, kQuery)
                  .flag("nc", "numberOfCommands", {}, kQuery)
                  .flag("nuc", "numberOfUserCommands", {}, kQuery)
                  .editable()
                  .queryable()
                  .strings(0, 1),
              runTimeCommand);
}

}  // namespace host::builtins
