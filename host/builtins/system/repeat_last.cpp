// repeatLast: what was run last from a menu, again.
#include "host/builtins/common/command.h"
#include "host/workspace/last_command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

CommandResult repeatLast(Context& context, const ParsedArgs& args) {
  auto& last = workspace::workspaceOf(context.session).kept<workspace::LastCommand>();
  if (args.isQuery()) return mel::Value(args.has("addCommandLabel") ? last.label : last.line);
  if (args.has("addCommand") || args.has("addCommandLabel")) {
    last = {args.text("addCommand", last.line), args.text("addCommandLabel")};
    return mel::Value();
  }
  if (last.line.empty()) return fail("repeatLast: there is nothing to repeat yet.");
  const std::string line = last.line;  // it may set another
  return context.session.interpreter().execute(line);
}

}  // namespace

void registerRepeatLast(CommandRegistry& registry) {
  defineQuery(registry, "repeatLast",
              Syntax()
                  .flag("ac", "addCommand", {ArgType::String})
                  .flag("acl", "addCommandLabel", {ArgType::String})
                  .queryable(),
              repeatLast);
}

}  // namespace host::builtins
