// autoSave: the file that unsaved work is kept in every few minutes.
#include "host/builtins/file/recovery.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

CommandResult autoSave(Context& context, const ParsedArgs& args) {
  Recovery& recovery = workspace::workspaceOf(context.session).kept<Recovery>();
  if (args.isQuery()) {
    if (args.has("enable")) return mel::Value(recovery.isEnabled);
    if (args.has("interval")) return mel::Value(recovery.intervalSeconds);
    if (args.has("folder")) return mel::Value(recovery.folder.string());
    return fail("autoSave: say what to query: -enable, -interval or -folder.");
  }
  const double seconds = args.real("interval", recovery.intervalSeconds);
  if (!(seconds >= 1)) return fail("autoSave: every {:g} seconds is too often.", seconds);
  if (args.has("folder")) {
    recovery.drop();
    recovery.folder = args.text("folder");
  }
  recovery.intervalSeconds = seconds;
  recovery.isEnabled = args.boolean("enable", recovery.isEnabled);
  if (!args.has("perform")) return mel::Value();
  const auto kept = recovery.keep(context);
  if (!kept) return failWith(kept.error());
  return mel::Value(*kept);
}

}  // namespace

void registerAutoSave(CommandRegistry& registry) {
  defineQuery(registry, "autoSave",
              Syntax()
                  .flag("en", "enable", {ArgType::Bool})
                  .flag("int", "interval", {ArgType::Double})
                  .flag("fol", "folder", {ArgType::String})
                  .flag("p", "perform", {}, cmd::kCreate)
                  .queryable(),
              autoSave);
}

}  // namespace host::builtins
