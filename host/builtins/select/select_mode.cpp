#include <algorithm>
#include <array>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::SelectionModes;
using workspace::workspaceOf;

struct TypeFlag {
  const char *shortName, *longName;
};
constexpr std::array<TypeFlag, 15> kComponentTypes = {{
    {"v", "vertex"},
    {"eg", "edge"},
    {"fc", "facet"},
    {"puv", "polymeshUV"},
    {"pvf", "polymeshVtxFace"},
    {"pv", "polymeshVertex"},
    {"pe", "polymeshEdge"},
    {"pf", "polymeshFace"},
    {"pfe", "polymeshFreeEdge"},
    {"cv", "controlVertex"},
    {"hul", "hull"},
    {"ep", "editPoint"},
    {"meshComponents", "meshComponents"},
    {"h", "handle"},
    {"la", "localRotationAxis"},
}};
constexpr std::array<TypeFlag, 6> kObjectTypes = {{
    {"p", "polymesh"},
    {"ca", "camera"},
    {"lt", "light"},
    {"l", "locator"},
    {"nc", "nurbsCurve"},
    {"ns", "nurbsSurface"},
}};

/// The polymesh flags are other names of the general ones.
std::string canonical(std::string_view name) {
  if (name == "polymeshVertex") return "vertex";
  if (name == "polymeshEdge") return "edge";
  if (name == "polymeshFace") return "facet";
  return std::string(name);
}

CommandResult selectMode(Context& context, const ParsedArgs& args) {
  SelectionModes& modes = workspaceOf(context.session).selectionModes;
  if (args.isQuery()) {
    if (args.has("component")) return mel::Value(modes.isComponentMode);
    if (args.has("object")) return mel::Value(!modes.isComponentMode);
    return mel::Value(false);
  }
  if (args.has("component")) modes.isComponentMode = true;
  if (args.has("object")) modes.isComponentMode = false;
  context.session.scriptJobs().triggerEvent("SelectModeChanged");
  return mel::Value();
}

CommandResult querySelectType(const SelectionModes& modes, const ParsedArgs& args) {
  const auto& types =
      args.has("objectComponent") ? modes.objectComponentTypes : modes.componentTypes;
  if (args.has("allComponents"))
    return mel::Value(std::all_of(
        kComponentTypes.begin(), kComponentTypes.end(),
        [&](const TypeFlag& flag) { return types.count(canonical(flag.longName)) > 0; }));
  for (const TypeFlag& flag : kComponentTypes)
    if (args.has(flag.longName)) return mel::Value(types.count(canonical(flag.longName)) > 0);
  for (const TypeFlag& flag : kObjectTypes)
    if (args.has(flag.longName)) return mel::Value(modes.objectTypesOff.count(flag.longName) == 0);
  return fail("selectType: say which type to query.");
}

CommandResult selectType(Context& context, const ParsedArgs& args) {
  SelectionModes& modes = workspaceOf(context.session).selectionModes;
  if (args.isQuery()) return querySelectType(modes, args);
  auto& types = args.has("objectComponent") ? modes.objectComponentTypes : modes.componentTypes;
  if (args.has("allComponents")) {
    types.clear();
    if (args.boolean("allComponents"))
      for (const TypeFlag& flag : kComponentTypes) types.insert(canonical(flag.longName));
  }
  if (args.has("allObjects")) {
    modes.objectTypesOff.clear();
    if (!args.boolean("allObjects"))
      for (const TypeFlag& flag : kObjectTypes) modes.objectTypesOff.insert(flag.longName);
  }
  for (const TypeFlag& flag : kComponentTypes) {
    if (!args.has(flag.longName)) continue;
    if (args.boolean(flag.longName))
      types.insert(canonical(flag.longName));
    else
      types.erase(canonical(flag.longName));
  }
  for (const TypeFlag& flag : kObjectTypes) {
    if (!args.has(flag.longName)) continue;
    if (args.boolean(flag.longName))
      modes.objectTypesOff.erase(flag.longName);
    else
      modes.objectTypesOff.insert(flag.longName);
  }
  context.session.scriptJobs().triggerEvent("SelectTypeChanged");
  return mel::Value();
}

}  // namespace

void registerSelectMode(CommandRegistry& registry) {
  defineQuery(registry, "selectMode",
              Syntax()
                  .flag("co", "component")
                  .flag("o", "object")
                  .flag("h", "hierarchical")
                  .flag("r", "root")
                  .flag("lf", "leaf")
                  .flag("t", "template")
                  .flag("p", "preset")
                  .queryable(),
              selectMode);
  Syntax syntax;
  syntax.flag("ocm", "objectComponent")
      .flag("alc", "allComponents", {ArgType::Bool})
      .flag("alo", "allObjects", {ArgType::Bool});
  for (const TypeFlag& flag : kComponentTypes)
    syntax.flag(flag.shortName, flag.longName, {ArgType::Bool});
  for (const TypeFlag& flag : kObjectTypes)
    syntax.flag(flag.shortName, flag.longName, {ArgType::Bool});
  defineQuery(registry, "selectType", syntax.queryable(), selectType);
}

}  // namespace host::builtins
