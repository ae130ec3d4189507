// createDisplayLayer, editDisplayLayerMembers, editDisplayLayerGlobals: layers, whose drawInfo the
// objects in them are drawn by.
#include <algorithm>

#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

constexpr const char* kDefaultLayer = "defaultLayer";

Result<scene::Node*> layerNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (!(*node)->type().isA("displayLayer")) return fail("{} is not a display layer.", name);
  return *node;
}

dg::Plug overrideOf(dg::Node& node) {
  return node.plug("drawOverride");
}

/// Members: what its drawInfo draws.
std::vector<scene::Node*> membersOf(scene::Node& layer) {
  std::vector<scene::Node*> members;
  for (const dg::Plug& plug : layer.graph().destinations(layer.plug("drawInfo")))
    if (plug.attribute()->longName == "drawOverride") members.push_back(plug.node());
  return members;
}

/// Puts an object into a layer; into the default one by taking it out of its own.
Result<bool> assign(Context& context, scene::Node& layer, scene::Node& node) {
  const dg::Plug looks = overrideOf(node);
  if (!looks) {
    postMessage(MessageKind::Warning,
                fmt::format("{} can't be in a layer: it is not drawn.", node.name()));
    return false;
  }
  dg::Graph& graph = context.document.graph();
  if (const dg::Plug before = graph.source(looks)) {
    if (before.node() == &layer) return true;
    HOST_TRY(graph.disconnect(before, looks));
  }
  if (layer.name() != kDefaultLayer) HOST_TRY(graph.connect(layer.plug("drawInfo"), looks));
  return true;
}

Result<int> assignAll(Context& context, scene::Node& layer, const std::vector<scene::Node*>& nodes,
                      bool below) {
  int count = 0;
  for (scene::Node* node : nodes) {
    auto done = assign(context, layer, *node);
    if (!done) return failWith(std::move(done.error()));
    count += *done ? 1 : 0;
    if (!below || !scene::isDagNode(*node)) continue;
    for (scene::Node* each : scene::nodesBelow(scene::dagLinks(*node).children)) {
      if (scene::isShape(*each)) continue;
      done = assign(context, layer, *each);
      if (!done) return failWith(std::move(done.error()));
      count += *done ? 1 : 0;
    }
  }
  return count;
}

Result<scene::Node*> layerManager(Context& context) {
  return context.document.node("layerManager");
}

CommandResult createDisplayLayer(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  std::vector<scene::Node*> members;
  if (!args.has("empty")) {
    auto given = args.hasObjects() ? args.resolveObjects(document)
                                   : Result<scene::SelectionList>(document.selection());
    if (!given) return failWith(std::move(given.error()));
    members = nodesOf(*given);
  }
  auto layer = document.createNode("displayLayer", args.text("name", "layer#"));
  if (!layer) return failWith(std::move(layer.error()));
  auto manager = layerManager(context);
  if (manager) {
    dg::Graph& graph = document.graph();
    const dg::Plug ids = (*manager)->plug("displayLayerId");
    const Index index =
        args.has("number") ? Index{args.integer("number")} : graph.nextFreeIndex(ids);
    if (index < 0) return fail("createDisplayLayer: {} is no number of a layer.", index);
    const dg::Plug id = ids.element(index);
    if (!graph.destinations(id).empty())
      return fail("createDisplayLayer: there is a layer of number {} already.", index);
    HOST_TRY(graph.set(id, std::int64_t{index}));
    HOST_TRY(graph.connect(id, (*layer)->plug("identification")));
    HOST_TRY(graph.set((*layer)->plug("displayOrder"), std::int64_t{index}));
    if (args.has("makeCurrent"))
      HOST_TRY(graph.set((*manager)->plug("currentDisplayLayer"), std::int64_t{index}));
  }
  auto done = assignAll(context, **layer, members, !args.has("noRecurse"));
  if (!done) return failWith(std::move(done.error()));
  return mel::Value((*layer)->name());
}

CommandResult editDisplayLayerMembers(Context& context, const ParsedArgs& args) {
  const std::vector<std::string> words = args.objectNames();
  if (words.empty()) return fail("editDisplayLayerMembers: name a layer first.");
  auto layer = layerNamed(context, words.front());
  if (!layer) return failWith(std::move(layer.error()));
  if (args.isQuery()) {
    std::vector<std::string> names;
    for (const scene::Node* member : membersOf(**layer))
      names.push_back(nodeName(*member, args.has("fullNames")));
    return toValue(std::move(names));
  }
  if (args.has("clear"))
    for (scene::Node* member : membersOf(**layer))
      HOST_TRY(
          context.document.graph().disconnect((*layer)->plug("drawInfo"), overrideOf(*member)));
  std::vector<scene::Node*> nodes;
  for (std::size_t i = 1; i < words.size(); ++i) {
    auto found = context.document.resolveAll({words[i]});
    if (!found) return failWith(std::move(found.error()));
    for (scene::Node* node : nodesOf(*found)) nodes.push_back(node);
  }
  auto count = assignAll(context, **layer, nodes, !args.has("noRecurse"));
  if (!count) return failWith(std::move(count.error()));
  return mel::Value(*count);
}

CommandResult editDisplayLayerGlobals(Context& context, const ParsedArgs& args) {
  auto manager = layerManager(context);
  if (!manager) return failWith(std::move(manager.error()));
  dg::Graph& graph = context.document.graph();
  const dg::Plug current = (*manager)->plug("currentDisplayLayer");
  if (args.isQuery()) {
    const auto index = graph.get(current);
    if (!index) return failWith(index.error());
    const dg::Plug id = (*manager)
                            ->plug("displayLayerId")
                            .element(static_cast<Index>(std::get<std::int64_t>(*index)));
    for (const dg::Plug& plug : graph.destinations(id))
      if (plug.node()->type().isA("displayLayer")) return mel::Value(plug.node()->name());
    return mel::Value(kDefaultLayer);
  }
  if (!args.has("currentDisplayLayer")) return mel::Value();
  auto layer = layerNamed(context, args.text("currentDisplayLayer"));
  if (!layer) return failWith(std::move(layer.error()));
  const dg::Plug id = graph.source((*layer)->plug("identification"));
  if (!id) return fail("{} has no number among the layers.", (*layer)->name());
  HOST_TRY(graph.set(current, std::int64_t{id.logicalIndex()}));
  return mel::Value();
}

}  // namespace

void registerDisplayLayers(CommandRegistry& registry) {
  define(registry, "createDisplayLayer",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("e", "empty")
             .flag("mc", "makeCurrent")
             .flag("nr", "noRecurse")
             .flag("num", "number", {ArgType::Int})
             .objects(),
         createDisplayLayer);
  define(registry, "editDisplayLayerMembers",
         Syntax()
             .flag("fn", "fullNames")
             .flag("nr", "noRecurse")
             .flag("clr", "clear")
             .queryable()
             .strings(0, -1),
         editDisplayLayerMembers);
  define(registry, "editDisplayLayerGlobals",
         Syntax().flag("cdl", "currentDisplayLayer", {ArgType::String}).queryable(),
         editDisplayLayerGlobals);
}

}  // namespace host::builtins
