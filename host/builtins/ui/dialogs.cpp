// confirmDialog, promptDialog, layoutDialog and progressWindow. Without a person a question is
// posted as a message and answered as by closing its window.
#include <algorithm>

#include "host/base/messages.h"
#include "host/builtins/ui/control_values.h"
#include "host/workspace/dialog_hooks.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::Dialogs;
using workspace::workspaceOf;

Syntax dialogSyntax() {
  Syntax syntax;
  syntax.flag("t", "title", {ArgType::String}).flag("m", "message", {ArgType::String});
  syntax.flag("b", "button", {ArgType::String}).multiUse();
  syntax.flag("db", "defaultButton", {ArgType::String})
      .flag("cb", "cancelButton", {ArgType::String});
  syntax.flag("ds", "dismissString", {ArgType::String})
      .flag("ma", "messageAlign", {ArgType::String});
  syntax.flag("p", "parent", {ArgType::String});
  syntax.flag("bgc", "backgroundColor", {ArgType::Double, ArgType::Double, ArgType::Double});
  return syntax;
}

std::string withoutPerson(const ParsedArgs& args) {
  for (const char* flag : {"dismissString", "cancelButton", "defaultButton", "button"})
    if (args.has(flag)) return args.text(flag);
  return "dismiss";
}

Result<Dialogs::Answer> answer(Context& context, const ParsedArgs& args, const char* command) {
  const std::string title = args.text("title"), message = args.text("message");
  postMessage(MessageKind::Info, title.empty() ? message : title + ": " + message);
  Dialogs& dialogs = workspaceOf(context.session).dialogs;
  if (dialogs.answers.empty() && dialogs.ask) {
    Dialogs::Answer given =
        dialogs.ask({title, message, args.text("text"), args.text("defaultButton"),
                     args.texts("button"), std::string_view(command) == "promptDialog"});
    if (given.button.empty()) given.button = withoutPerson(args);
    return given;
  }
  if (dialogs.answers.empty()) return Dialogs::Answer{withoutPerson(args), {}};
  Dialogs::Answer given = dialogs.answers.front();
  dialogs.answers.pop_front();
  const std::vector<std::string> buttons = args.texts("button");
  const bool isButton = buttons.empty() || given.button == args.text("dismissString") ||
                        std::find(buttons.begin(), buttons.end(), given.button) != buttons.end();
  if (!isButton)
    return fail("{}: the dialog '{}' has no button '{}'.", command, title, given.button);
  return given;
}

CommandResult confirmDialog(Context& context, const ParsedArgs& args) {
  auto given = answer(context, args, "confirmDialog");
  if (!given) return failWith(std::move(given.error()));
  return mel::Value(given->button);
}

CommandResult promptDialog(Context& context, const ParsedArgs& args) {
  Dialogs& dialogs = workspaceOf(context.session).dialogs;
  if (args.isQuery()) return mel::Value(dialogs.promptText);
  const bool isAnswered = !dialogs.answers.empty() || dialogs.ask;
  auto given = answer(context, args, "promptDialog");
  if (!given) return failWith(std::move(given.error()));
  dialogs.promptText = isAnswered && !given->text.empty() ? given->text : args.text("text");
  return mel::Value(given->button);
}

CommandResult layoutDialog(Context& context, const ParsedArgs& args) {
  Dialogs& dialogs = workspaceOf(context.session).dialogs;
  if (args.has("dismiss")) {
    dialogs.dismissedWith = args.text("dismiss");
    dialogs.isDismissed = true;
    return mel::Value();
  }
  const auto& hooks = workspaceOf(context.session).kept<workspace::DialogHooks>();
  ui::Tree& tree = workspaceOf(context.session).controls;
  ui::Control* const before = tree.currentParent();
  auto window = tree.create(*ui::findControlType("window"), {});
  if (!window) return failWith(std::move(window.error()));
  const std::string windowPath = ui::Tree::path(**window);
  (*window)->setValue("title", {args.text("title")});
  auto form = tree.create(*ui::findControlType("formLayout"), {});
  if (!form) return failWith(std::move(form.error()));
  dialogs.isDismissed = false;
  dialogs.dismissedWith = "dismiss";
  auto built = context.session.interpreter().execute(args.text("uiScript"));
  if (built && !dialogs.isDismissed && dialogs.answers.empty() && hooks.showModal)
    hooks.showModal(windowPath, [&dialogs] { return dialogs.isDismissed; });
  if (!dialogs.isDismissed && !dialogs.answers.empty()) {
    dialogs.dismissedWith = dialogs.answers.front().button;
    dialogs.answers.pop_front();
  }
  if (auto left = tree.find(windowPath)) HOST_TRY(removeControl(context, **left));
  tree.setCurrentParent(before);
  if (!built) return failWith(std::move(built.error()));
  return mel::Value(dialogs.dismissedWith);
}

CommandResult queryProgress(const Dialogs::Progress& progress, const ParsedArgs& args) {
  if (args.has("progress")) return mel::Value(progress.value);
  if (args.has("isCancelled")) return mel::Value(progress.isCancelled);
  if (args.has("isInterruptable")) return mel::Value(progress.isInterruptable);
  if (args.has("minValue")) return mel::Value(progress.low);
  if (args.has("maxValue")) return mel::Value(progress.high);
  if (args.has("status")) return mel::Value(progress.status);
  if (args.has("title")) return mel::Value(progress.title);
  return fail("progressWindow: say which flag to query.");
}

/// One at a time, as there is one person to look at it.
CommandResult progressWindow(Context& context, const ParsedArgs& args) {
  Dialogs& dialogs = workspaceOf(context.session).dialogs;
  Dialogs::Progress& progress = dialogs.progress;
  const auto& hooks = workspaceOf(context.session).kept<workspace::DialogHooks>();
  const auto show = [&] {
    if (hooks.showProgress) hooks.showProgress(progress);
  };
  if (args.isQuery()) {
    if (args.has("isCancelled")) show();
    return queryProgress(progress, args);
  }
  if (args.has("endProgress")) {
    progress = {};
    show();
    return mel::Value(true);
  }
  if (args.isEdit() && !progress.isOpen) return fail("progressWindow: none is open.");
  if (!args.isEdit()) {
    if (progress.isOpen) return mel::Value(false);
    progress = {};
    progress.isOpen = true;
  }
  progress.title = args.text("title", progress.title);
  progress.status = args.text("status", progress.status);
  progress.low = args.integer("minValue", progress.low);
  progress.high = args.integer("maxValue", progress.high);
  progress.isInterruptable = args.boolean("isInterruptable", progress.isInterruptable);
  const int value = args.integer("progress", progress.value) + args.integer("step", 0);
  progress.value = std::clamp(value, std::min(progress.low, progress.high),
                              std::max(progress.low, progress.high));
  show();
  return mel::Value(true);
}

}  // namespace

void registerDialogs(CommandRegistry& registry) {
  defineQuery(registry, "confirmDialog",
              dialogSyntax()
                  .flag("icn", "icon", {ArgType::String})
                  .flag("ann", "annotation", {ArgType::String})
                  .multiUse(),
              confirmDialog);
  defineQuery(registry, "promptDialog",
              dialogSyntax()
                  .flag("tx", "text", {ArgType::String})
                  .flag("st", "style", {ArgType::String})
                  .flag("sf", "scrollableField", {ArgType::Bool})
                  .queryable(),
              promptDialog);
  defineQuery(
      registry, "layoutDialog",
      Syntax()
          .flag("t", "title", {ArgType::String})
          .flag("ui", "uiScript", {ArgType::Script})
          .flag("dis", "dismiss", {ArgType::String})
          .flag("p", "parent", {ArgType::String})
          .flag("bgc", "backgroundColor", {ArgType::Double, ArgType::Double, ArgType::Double}),
      layoutDialog);
  Syntax progress;
  progress.flag("t", "title", {ArgType::String}).flag("st", "status", {ArgType::String});
  progress.flag("pr", "progress", {ArgType::Int}).flag("s", "step", {ArgType::Int});
  progress.flag("min", "minValue", {ArgType::Int}).flag("max", "maxValue", {ArgType::Int});
  progress.flag("ii", "isInterruptable", {ArgType::Bool})
      .flag("ic", "isCancelled")
      .flag("ep", "endProgress");
  defineQuery(registry, "progressWindow", progress.editable().queryable(), progressWindow);
}

}  // namespace host::builtins
