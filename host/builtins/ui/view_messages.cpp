// inViewMessage and headsUpDisplay: texts over the views.
#include <map>

#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/builtins/ui/control_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::HeadsUpDisplays;
using workspace::InViewMessages;
using workspace::workspaceOf;

CommandResult inViewMessage(Context& context, const ParsedArgs& args) {
  InViewMessages& messages = workspaceOf(context.session).inViewMessages;
  if (args.isQuery())
    return args.has("enable") ? mel::Value(messages.isEnabled) : mel::Value(messages.shown);
  if (args.has("enable")) messages.isEnabled = args.boolean("enable");
  if (args.has("hide") || args.has("clear")) messages.shown.clear();
  for (const char* flag : {"message", "assistMessage", "statusMessage"}) {
    if (!args.has(flag) || !messages.isEnabled) continue;
    messages.shown = args.text(flag);
    messages.position = args.text("position", "topCenter");
    postMessage(MessageKind::Info, messages.shown);
  }
  return mel::Value();
}

CommandResult queryDisplay(Context& context, const HeadsUpDisplays::Display& display,
                           const ParsedArgs& args) {
  if (args.has("section")) return mel::Value(display.section);
  if (args.has("block")) return mel::Value(display.block);
  if (args.has("label")) return mel::Value(display.label);
  if (args.has("command")) return mel::Value(display.command);
  if (args.has("visible")) return mel::Value(display.isVisible);
  if (args.has("scriptResult")) return context.session.interpreter().execute(display.command);
  return fail("headsUpDisplay: say which flag to query.");
}

int nextBlock(const HeadsUpDisplays& displays, int section) {
  int next = 0;
  for (const auto& [name, display] : displays.byName)
    if (display.section == section && display.block >= next) next = display.block + 1;
  return next;
}

CommandResult headsUpDisplay(Context& context, const ParsedArgs& args) {
  HeadsUpDisplays& displays = workspaceOf(context.session).headsUpDisplays;
  const std::string name = args.firstObject();
  if (args.has("exists")) return mel::Value(displays.byName.count(name) > 0);
  if (args.has("nextFreeBlock"))
    return mel::Value(nextBlock(displays, args.integer("nextFreeBlock")));
  if (args.has("listHeadsUpDisplays")) {
    std::vector<std::string> names;
    for (const auto& [each, display] : displays.byName) names.push_back(each);
    return toValue(std::move(names));
  }
  if (args.has("removePosition")) {
    const int section = args.integer("removePosition"),
              block = args.integer("removePosition", 0, 1);
    std::erase_if(displays.byName, [&](const auto& each) {
      return each.second.section == section && each.second.block == block;
    });
    return mel::Value();
  }
  const auto found = displays.byName.find(name);
  const bool mustExist = !args.isCreate() || args.has("remove");
  if (mustExist && found == displays.byName.end())
    return fail(ErrorKind::NotFound, "headsUpDisplay: Object '{}' not found.", name);
  if (args.has("remove")) {
    displays.byName.erase(found);
    return mel::Value();
  }
  if (args.isQuery()) return queryDisplay(context, found->second, args);
  if (args.isCreate() && found != displays.byName.end())
    return fail(ErrorKind::BadArgument, "Object's name '{}' is not unique.", name);
  HeadsUpDisplays::Display display =
      found == displays.byName.end() ? HeadsUpDisplays::Display{} : found->second;
  display.section = args.integer("section", display.section);
  display.block = args.integer("block", display.block);
  if (display.section < 0 || display.section > 9)
    return fail("headsUpDisplay: sections are 0 to 9.");
  for (const auto& [other, taken] : displays.byName)
    if (other != name && taken.section == display.section && taken.block == display.block)
      return fail(ErrorKind::BadArgument,
                  "headsUpDisplay: block {} of section {} is taken by '{}'.", display.block,
                  display.section, other);
  display.label = args.text("label", display.label);
  display.command = args.text("command", display.command);
  display.isVisible = args.boolean("visible", display.isVisible);
  displays.byName[name] = display;
  return mel::Value(name);
}

}  // namespace

void registerViewMessages(CommandRegistry& registry) {
  Syntax message;
  message.flag("msg", "message", {ArgType::String}).flag("amg", "assistMessage", {ArgType::String});
  message.flag("smg", "statusMessage", {ArgType::String})
      .flag("pos", "position", {ArgType::String});
  message.flag("f", "fade")
      .flag("fst", "fadeStayTime", {ArgType::Int})
      .flag("fit", "fadeInTime", {ArgType::Int});
  message.flag("fot", "fadeOutTime", {ArgType::Int})
      .flag("a", "alpha", {ArgType::Double})
      .flag("bkc", "backColor", {ArgType::Int});
  message.flag("fs", "fontSize", {ArgType::Int})
      .flag("dk", "dragKill")
      .flag("ck", "clickKill")
      .flag("hd", "hide");
  message.flag("cl", "clear", {ArgType::String})
      .flag("sh", "show", {ArgType::Bool})
      .flag("en", "enable", {ArgType::Bool});
  defineQuery(registry, "inViewMessage", message.queryable(), inViewMessage);
  Syntax display;
  display.flag("s", "section", {ArgType::Int})
      .flag("b", "block", {ArgType::Int})
      .flag("l", "label", {ArgType::String});
  display.flag("c", "command", {ArgType::Script})
      .flag("vis", "visible", {ArgType::Bool})
      .flag("ex", "exists")
      .flag("rem", "remove");
  display.flag("rp", "removePosition", {ArgType::Int, ArgType::Int})
      .flag("lhd", "listHeadsUpDisplays");
  display.flag("nfb", "nextFreeBlock", {ArgType::Int})
      .flag("sr", "scriptResult")
      .flag("ev", "event", {ArgType::String});
  display.flag("bs", "blockSize", {ArgType::String})
      .flag("lfs", "labelFontSize", {ArgType::String});
  display.flag("dfs", "dataFontSize", {ArgType::String})
      .flag("ba", "blockAlignment", {ArgType::String});
  display.flag("nc", "nodeChanges", {ArgType::String})
      .flag("atr", "attachToRefresh")
      .flag("dw", "dataWidth", {ArgType::Int});
  defineQuery(registry, "headsUpDisplay", display.editable().queryable().strings(0, 1),
              headsUpDisplay);
}

}  // namespace host::builtins
