// Presets of a node's attributes. A preset is a script that names a type between startAttrPreset
// and endAttrPreset and blends attributes in between; applyAttrPreset runs it on a node.
#include "host/builtins/common/command.h"
#include "host/cmd/plug_values.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

/// The preset that is being applied.
struct AttrPreset {
  std::string target;     ///< a node by name; empty: the first selected one
  double amount = 1;      ///< 0 leaves the node as it is, 1 makes it as the preset
  bool isOpen = false;    ///< between start and end
  bool isWanted = false;  ///< the preset is of the node's type
};

AttrPreset& presetOf(Context& context) {
  return workspace::workspaceOf(context.session).kept<AttrPreset>();
}

Result<dg::Node*> targetOf(Context& context) {
  const AttrPreset& preset = presetOf(context);
  if (!preset.target.empty()) {
    auto node = context.document.node(preset.target);
    if (!node) return failWith(std::move(node.error()));
    return *node;
  }
  const auto& items = context.document.selection().items();
  if (items.empty()) return fail("Select the node that the preset is for.");
  return items.front().node.get();
}

CommandResult startAttrPreset(Context& context, const ParsedArgs& args) {
  AttrPreset& preset = presetOf(context);
  const auto node = targetOf(context);
  if (!node) return fail("startAttrPreset: {}", node.error().message);
  preset.isOpen = true;
  preset.isWanted = (*node)->type().isA(args.firstObject());
  return mel::Value(preset.isWanted);
}

CommandResult endAttrPreset(Context& context, const ParsedArgs&) {
  presetOf(context).isOpen = presetOf(context).isWanted = false;
  return mel::Value();
}

/// An attribute and its value: numbers are blended, texts taken from half way on.
CommandResult blendAttr(Context& context, const ParsedArgs& args) {
  const AttrPreset& preset = presetOf(context);
  if (!preset.isOpen) return fail("Blend attributes between startAttrPreset and endAttrPreset.");
  if (!preset.isWanted) return mel::Value();
  const auto node = targetOf(context);
  if (!node) return failWith(node.error());
  const auto plug = dg::parsePlug(**node, args.firstObject());
  dg::Graph& graph = context.document.graph();
  if (!plug || !graph.settable(*plug)) return mel::Value();  // presets of other versions
  if (!plug->attribute()->isNumeric()) {
    if (preset.amount >= 0.5 && plug->attribute()->type == dg::AttributeType::String)
      HOST_TRY(graph.set(*plug, args.objectNames()[1]));
    return mel::Value();
  }
  const auto before = cmd::readPlug(graph, context.document.units(), *plug);
  if (!before) return failWith(before.error());
  const double from = before->toFloat().value_or(0), to = mel::leadingFloat(args.objectNames()[1]);
  HOST_TRY(cmd::writeLeaf(graph, context.document.units(), *plug,
                          mel::Value(from + (to - from) * preset.amount)));
  return mel::Value();
}

CommandResult applyAttrPreset(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  AttrPreset& preset = presetOf(context);
  const AttrPreset before = preset;
  preset = {words[0], words.size() > 2 ? mel::leadingFloat(words[2]) : 1.0, false, false};
  auto run = context.session.interpreter().sourceFile(words[1]);
  preset = before;
  if (!run) return fail("applyAttrPreset: {}", run.error().message);
  return mel::Value();
}

}  // namespace

void registerAttrPresets(CommandRegistry& registry) {
  define(registry, "startAttrPreset", Syntax().strings(1, 1), startAttrPreset);
  define(registry, "endAttrPreset", Syntax().strings(0, 1), endAttrPreset);
  for (const char* name : {"blendAttr", "blendAttrStr", "blendAttrPreset", "blendMultiAttr"})
    define(registry, name, Syntax().strings(2, 2), blendAttr);
  define(registry, "applyAttrPreset", Syntax().strings(2, 3), applyAttrPreset);
}

}  // namespace host::builtins
