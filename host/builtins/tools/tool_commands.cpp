// setToolTo, currentCtx, contextInfo and tumbleCtx: which tool is in hand and how it is set.
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

namespace {

/// A name itself, or the tool that the program's own scripts keep under it in a global variable
/// ($gSelect).
std::string toolName(Context& context, const std::string& name) {
  if (workspaceOf(context.session).toolbox.find(name)) return name;
  const auto variable = context.session.interpreter().global(name);
  return variable && variable->isString() ? variable->string() : name;
}

CommandResult setToolTo(Context& context, const ParsedArgs& args) {
  const std::string name = toolName(context, args.firstObject());
  if (!workspaceOf(context.session).toolbox.find(name))
    return fail(ErrorKind::NotFound, "setToolTo: Tool '{}' not found.", name);
  auto changed = workspaceOf(context.session).toolbox.setCurrent(name);
  if (!changed) return failWith(std::move(changed.error()));
  context.session.scriptJobs().triggerEvent("PostToolChanged");
  return mel::Value();
}

CommandResult currentCtx(Context& context, const ParsedArgs&) {
  return mel::Value(workspaceOf(context.session).toolbox.currentName());
}

CommandResult contextInfo(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  const auto tool = workspaceOf(context.session).toolbox.find(name);
  if (args.has("exists")) return mel::Value(tool != nullptr);
  if (!tool) return fail(ErrorKind::NotFound, "contextInfo: Tool '{}' not found.", name);
  if (args.has("class")) return mel::Value(tool->className());
  if (args.has("title")) return mel::Value(tool->title);
  for (std::size_t i = 0; i < tool->images.size(); ++i)
    if (args.has("image" + std::to_string(i + 1))) return mel::Value(tool->images[i]);
  return fail("contextInfo: say what to tell of '{}': -class, -title, -exists or -image1.", name);
}

// tumbleCtx
// ---------------------------------------------------------------------------------------------------------

// A view has one tumble tool; what it can't do is only ever off.
constexpr const char* kNeverOn[] = {"autoSetPivot", "objectTumble", "alternateContext"};

Result<void> editTumble(tools::TumbleSettings& settings, const ParsedArgs& args) {
  for (const char* flag : kNeverOn)
    if (args.boolean(flag)) return fail("tumbleCtx: -{} can't be turned on here.", flag);
  const int pivot = args.integer("localTumble", static_cast<int>(settings.pivot));
  if (pivot < 0 || pivot > 2)
    return fail(
        "tumbleCtx: -localTumble is 0 (the tumble pivot), 1 (the centre of interest) or 2 "
        "(the camera's own place), not {}.",
        pivot);
  const double scale = args.real("tumbleScale", settings.scale);
  const double step = args.real("orthoStep", settings.stepDegrees);
  if (!std::isfinite(scale) || !(step > 0) || !std::isfinite(step))
    return fail("tumbleCtx: -tumbleScale is a number and -orthoStep one above 0, in degrees.");
  settings = {static_cast<tools::TumblePivot>(pivot), scale,
              args.boolean("orthoLock", settings.locksAxes),
              args.boolean("autoOrthoConstrain", settings.isStepped), step};
  return {};
}

CommandResult tumbleCtx(Context& context, const ParsedArgs& args) {
  tools::TumbleSettings& settings = workspaceOf(context.session).toolbox.tumble;
  const std::string name = args.firstObject();
  const bool isKnown = name == "tumbleContext";
  if (args.has("exists")) return mel::Value(isKnown);
  if (args.isCreate()) return fail("tumbleCtx: a view has one tumble tool: edit 'tumbleContext'.");
  if (!isKnown) return fail(ErrorKind::NotFound, "tumbleCtx: Tool '{}' not found.", name);
  if (args.isEdit()) {
    HOST_TRY(editTumble(settings, args));
    return mel::Value(name);
  }
  if (args.has("localTumble")) return mel::Value(static_cast<int>(settings.pivot));
  if (args.has("tumbleScale")) return mel::Value(settings.scale);
  if (args.has("orthoLock")) return mel::Value(settings.locksAxes);
  if (args.has("orthoStep")) return mel::Value(settings.stepDegrees);
  if (args.has("autoOrthoConstrain")) return mel::Value(settings.isStepped);
  for (const char* flag : kNeverOn)
    if (args.has(flag)) return mel::Value(false);
  return fail("tumbleCtx: say which flag to query.");
}

}  // namespace

void registerHotkeys(CommandRegistry& registry);

void registerToolCommands(CommandRegistry& registry) {
  registerHotkeys(registry);
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
  tumble.flag("lt", "localTumble", {ArgType::Int})
      .flag("ts", "tumbleScale", {ArgType::Double})
      .flag("ol", "orthoLock", {ArgType::Bool})
      .flag("os", "orthoStep", {ArgType::Double})
      .flag("aoc", "autoOrthoConstrain", {ArgType::Bool})
      .flag("asp", "autoSetPivot", {ArgType::Bool})
      .flag("ot", "objectTumble", {ArgType::Bool})
      .flag("ac", "alternateContext", {ArgType::Bool});
  defineQuery(registry, "tumbleCtx",
              tumble.flag("ex", "exists").editable().queryable().strings(1, 1), tumbleCtx);
}

}  // namespace host::builtins
