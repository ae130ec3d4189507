// setToolTo, currentCtx, contextInfo and tumbleCtx: which tool is in hand and how it is set.
#include <map>

#include "host/builtins/common/command.h"
#include "host/builtins/view/tool_views.h"

namespace host::builtins {

namespace {

/// A name itself, or the tool that the program's own scripts keep under it in a global variable
/// ($gSelect).
std::string toolName(Context& context, const std::string& name) {
  if (toolsOf(context.session).find(name)) return name;
  const auto variable = context.session.interpreter().global(name);
  return variable && variable->isString() ? variable->string() : name;
}

CommandResult setToolTo(Context& context, const ParsedArgs& args) {
  const std::string name = toolName(context, args.firstObject());
  if (!toolsOf(context.session).find(name)) return fail("setToolTo: Tool '{}' not found.", name);
  auto changed = toolsOf(context.session).setCurrent(name);
  if (!changed) return failWith(std::move(changed.error()));
  context.session.scriptJobs().triggerEvent("PostToolChanged");
  return mel::Value();
}

CommandResult currentCtx(Context& context, const ParsedArgs&) {
  return mel::Value(toolsOf(context.session).currentName());
}

CommandResult contextInfo(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  const auto tool = toolsOf(context.session).find(name);
  if (args.has("exists")) return mel::Value(tool != nullptr);
  if (!tool) return fail("contextInfo: Tool '{}' not found.", name);
  if (args.has("class")) return mel::Value(tool->className());
  if (args.has("title")) return mel::Value(tool->title);
  for (std::size_t i = 0; i < tool->images.size(); ++i)
    if (args.has("image" + std::to_string(i + 1))) return mel::Value(tool->images[i]);
  return fail("contextInfo: say what to tell of '{}': -class, -title, -exists or -image1.", name);
}

// tumbleCtx
// ---------------------------------------------------------------------------------------------------------

struct TumbleFlag {
  const char *shortName, *longName;
  ArgType type;
  double initial;
};
constexpr TumbleFlag kTumbleFlags[] = {
    {"lt", "localTumble", ArgType::Int, 0},          {"ts", "tumbleScale", ArgType::Double, 1},
    {"ol", "orthoLock", ArgType::Bool, 1},           {"os", "orthoStep", ArgType::Double, 5},
    {"aoc", "autoOrthoConstrain", ArgType::Bool, 0}, {"asp", "autoSetPivot", ArgType::Bool, 0},
    {"ot", "objectTumble", ArgType::Bool, 0},        {"ac", "alternateContext", ArgType::Bool, 0},
};

/// The settings of the tumble tools, by context; a value that is not there has its initial one.
struct TumbleSettings {
  std::map<std::string, std::map<std::string, double, std::less<>>> contexts{{"tumbleContext", {}}};
};

CommandResult tumbleCtx(Context& context, const ParsedArgs& args) {
  auto& contexts = context.session.service<TumbleSettings>().contexts;
  const std::string name = args.firstObject();
  const auto found = contexts.find(name);
  if (args.has("exists")) return mel::Value(found != contexts.end());
  if (args.isCreate()) return fail("tumbleCtx: a view has one tumble tool: edit 'tumbleContext'.");
  if (found == contexts.end()) return fail("tumbleCtx: Tool '{}' not found.", name);
  for (const TumbleFlag& flag : kTumbleFlags) {
    if (!args.has(flag.longName)) continue;
    if (args.isEdit()) {
      found->second[flag.longName] = args.real(flag.longName);
      if (flag.longName == std::string_view("localTumble"))
        toolsOf(context.session).tumblesAboutInterest = args.real(flag.longName) != 0;
      continue;
    }
    const auto value = found->second.find(flag.longName);
    const double now = value == found->second.end() ? flag.initial : value->second;
    return flag.type == ArgType::Double ? mel::Value(now) : mel::Value(mel::truncateToInt(now));
  }
  if (args.isQuery()) return fail("tumbleCtx: say which flag to query.");
  return mel::Value(name);
}

}  // namespace

void registerToolCommands(CommandRegistry& registry) {
  defineQuery(registry, "setToolTo", Syntax().strings(1, 1), setToolTo);
  defineQuery(registry, "currentCtx", Syntax().queryable(), currentCtx);
  defineQuery(registry, "contextInfo",
              Syntax()
                  .flag("c", "class")
                  .flag("t", "title")
                  .flag("ex", "exists")
                  .flag("i1", "image1")
                  .flag("i2", "image2")
                  .flag("i3", "image3")
                  .strings(1, 1),
              contextInfo);
  Syntax tumble;
  for (const TumbleFlag& flag : kTumbleFlags)
    tumble.flag(flag.shortName, flag.longName, {flag.type});
  defineQuery(registry, "tumbleCtx",
              tumble.flag("ex", "exists").editable().queryable().strings(1, 1), tumbleCtx);
}

}  // namespace host::builtins
