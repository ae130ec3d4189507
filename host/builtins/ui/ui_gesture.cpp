// What a person does to the windows, as a command: for tests, recordings and scripts that show
// something.
#include "host/builtins/ui/control_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

namespace {

CommandResult uiGesture(Context& context, const ParsedArgs& args) {
  if (args.has("answer")) {
    workspaceOf(context.session)
        .dialogs.answers.push_back({args.text("answer"), args.text("answer", {}, 1)});
    if (!args.hasObjects()) return mel::Value();
  }
  ui::Tree& tree = workspaceOf(context.session).controls;
  auto control = tree.find(args.firstObject());
  if (!control) return failAt("uiGesture", control.error());
  ui::Values values;
  for (const char* flag : {"set", "drag"})
    for (int use = 0; use < args.uses(flag); ++use)
      values.push_back(toAtom(args.values(flag, use).front()));
  std::string windowPath;
  if (args.has("close")) {
    const ui::Control* before = *control;
    windowPath = ui::Tree::path(*before);
  }
  auto scripts = args.has("close")  ? tree.userCloses(**control)
                 : args.has("drag") ? tree.userDrags(**control, values)
                                    : tree.userSets(**control, values);
  if (!scripts) return failAt("uiGesture", scripts.error());
  if (args.has("close") && !tree.find(windowPath)) announceRemoved(context, {windowPath});
  runCallbacks(context, *scripts);
  return mel::Value();
}

}  // namespace

void registerUiGesture(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("p", "press")
      .flag("s", "set", {ArgType::Any})
      .multiUse()
      .flag("d", "drag", {ArgType::Any})
      .multiUse();
  syntax.flag("c", "close").flag("a", "answer", {ArgType::String, ArgType::String}).optionalArgs();
  defineQuery(registry, "uiGesture", syntax.strings(0, 1), uiGesture);
}

}  // namespace host::builtins
