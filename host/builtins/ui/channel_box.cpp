// channelBox: what the list of channels is about and which of them are picked. The window's own
// attribute panel has no picked rows, so that scripts are who picks.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

struct ChannelPick {
  std::vector<std::string> plugs;  ///< as they were named: "pCube1.tx", or "tx" of all objects
};

constexpr const char* kMain = "mainChannelBox";

/// The transforms, shapes or history of what is selected; the first object's alone, as the list
/// shows one.
std::vector<dg::Node*> shownNodes(Context& context, std::string_view what) {
  std::vector<dg::Node*> found;
  for (const scene::SelectionItem& item : context.document.selection().items()) {
    dg::Node* node = item.node.get();
    if (!item.isDag()) {
      if (what == "main") found.push_back(node);
      continue;
    }
    const scene::DagPath shape = item.path.toShape();
    if (what == "main")
      found.push_back(scene::isShape(*node) ? item.path.transform().node() : node);
    if (what == "shape" && !shape.isWorld() && scene::isShape(*shape.node()))
      found.push_back(shape.node());
    if (what == "history" && !shape.isWorld() && scene::isShape(*shape.node()))
      for (const auto& connection : context.document.graph().incoming(*shape.node())) {
        dg::Node* source = connection.source.node();
        if (!scene::isDagNode(*source) && std::ranges::find(found, source) == found.end())
          found.push_back(source);
      }
  }
  return found;
}

std::vector<std::string> names(const std::vector<dg::Node*>& nodes) {
  std::vector<std::string> all;
  for (const dg::Node* node : nodes) all.push_back(nodeName(*node));
  return all;
}

/// The short names of the picked channels that these nodes have.
std::vector<std::string> pickedOf(Context& context, const std::vector<dg::Node*>& nodes) {
  std::vector<std::string> picked;
  for (const std::string& plug : workspaceOf(context.session).kept<ChannelPick>().plugs) {
    const std::size_t dot = plug.find('.');
    const std::string attribute = dot == std::string::npos ? plug : plug.substr(dot + 1);
    for (dg::Node* node : nodes) {
      if (dot != std::string::npos && node->name() != plug.substr(0, dot)) continue;
      const dg::Attribute* found = node->findAttribute(attribute);
      if (found && std::ranges::find(picked, found->shortName) == picked.end())
        picked.push_back(found->shortName);
    }
  }
  return picked;
}

CommandResult channelBox(Context& context, const ParsedArgs& args) {
  const std::string name = args.firstObject();
  if (args.has("exists")) return mel::Value(name == kMain);
  if (args.isCreate())
    return fail("channelBox: there is one list of channels: edit or query '{}'.", kMain);
  if (name != kMain) return fail(ErrorKind::NotFound, "channelBox: Object '{}' not found.", name);
  auto& pick = workspaceOf(context.session).kept<ChannelPick>();
  if (args.isEdit()) {
    if (args.has("select")) {
      pick.plugs.clear();
      for (int use = 0; use < args.uses("select"); ++use)
        for (const mel::Value& value : args.values("select", use))
          for (std::string& word : value.toTexts()) pick.plugs.push_back(std::move(word));
    }
    return mel::Value(name);
  }
  constexpr struct {
    const char *objects, *selected, *kind;
  } kKinds[] = {{"mainObjectList", "selectedMainAttributes", "main"},
                {"shapeObjectList", "selectedShapeAttributes", "shape"},
                {"historyObjectList", "selectedHistoryAttributes", "history"}};
  for (const auto& kind : kKinds) {
    if (args.has(kind.objects)) return toValue(names(shownNodes(context, kind.kind)));
    if (args.has(kind.selected)) return toValue(pickedOf(context, shownNodes(context, kind.kind)));
  }
  return fail("channelBox: say which flag to query.");
}

}  // namespace

void registerChannelBox(CommandRegistry& registry) {
  defineQuery(registry, "channelBox",
              Syntax()
                  .flag("mol", "mainObjectList", {}, kQuery)
                  .flag("sol", "shapeObjectList", {}, kQuery)
                  .flag("hol", "historyObjectList", {}, kQuery)
                  .flag("sma", "selectedMainAttributes", {}, kQuery)
                  .flag("ssa", "selectedShapeAttributes", {}, kQuery)
                  .flag("sha", "selectedHistoryAttributes", {}, kQuery)
                  .flag("s", "select", {ArgType::Any}, kEdit)
                  .multiUse()
                  .flag("upd", "update", {}, kEdit)
                  .flag("ex", "exists")
                  .editable()
                  .queryable()
                  .strings(0, 1),
              channelBox);
}

}  // namespace host::builtins
