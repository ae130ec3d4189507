#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/edits/remove.h"

namespace host::builtins {

namespace {

/// -channels -expressions -constraints: what drives the objects, never the objects. What was driven
/// keeps the values it had.
Result<void> deleteDrivers(Context& context, const ParsedArgs& args,
                           const scene::SelectionList& list) {
  dg::Graph& graph = context.document.graph();
  const auto isMeant = [&](const dg::Node& node) {
    return (args.has("channels") && node.type().isA("animCurve")) ||
           (args.has("expressions") && node.type().name == "expression") ||
           (args.has("constraints") && node.type().isA("constraint"));
  };
  std::vector<scene::Node*> gone;
  std::vector<std::pair<dg::Plug, dg::Value>> kept;
  for (dg::Node* node : nodesOf(list)) {
    for (const dg::Graph::Connection& connection : graph.incoming(*node)) {
      dg::Node* from = connection.source.node();
      scene::Node* between = nullptr;
      if (from->type().name == "unitConversion")
        if (const dg::Plug before = graph.source(from->plug("input"))) {
          between = from;
          from = before.node();
        }
      if (!isMeant(*from)) continue;
      if (between) gone.push_back(between);
      if (auto value = graph.get(connection.destination))
        kept.emplace_back(connection.destination, *std::move(value));
      if (std::ranges::find(gone, from) == gone.end()) gone.push_back(from);
    }
  }
  if (gone.empty()) return {};
  // What converts for the drivers alone goes with them.
  for (std::size_t i = 0; i < gone.size(); ++i) {
    if (!isMeant(*gone[i])) continue;
    for (const dg::Graph::Connection& feed : graph.incoming(*gone[i]))
      if (feed.source.node()->type().name == "unitConversion" &&
          std::ranges::find(gone, feed.source.node()) == gone.end())
        gone.push_back(feed.source.node());
  }
  HOST_TRY(context.document.deleteNodes(gone));
  for (const auto& [plug, value] : kept)
    if (graph.settable(plug)) HOST_TRY(graph.set(plug, value));
  return {};
}

CommandResult deleteObjects(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  if (args.has("constructionHistory")) {
    HOST_TRY(edits::removeHistory(document,
                                  args.has("all") ? edits::topObjects(document, true) : *list));
    return mel::Value();
  }
  if (args.has("channels") || args.has("expressions") || args.has("constraints")) {
    HOST_TRY(deleteDrivers(context, args, *list));
    return mel::Value();
  }
  if (args.has("all")) *list = edits::topObjects(document, false);
  HOST_TRY(edits::remove(document, *list));
  return mel::Value();
}

/// What the Delete key does, after which nothing stays selected.
CommandResult deleteSelected(Context& context, const ParsedArgs&) {
  scene::Document& document = context.document;
  if (document.selection().isEmpty()) return mel::Value();
  HOST_TRY(edits::remove(document, document.selection()));
  document.setSelection({});
  return mel::Value();
}

}  // namespace

void registerDelete(CommandRegistry& registry) {
  define(registry, "delete",
         Syntax()
             .flag("ch", "constructionHistory")
             .flag("all", "all")
             .flag("hi", "hierarchy", {ArgType::String})
             .flag("s", "shape")
             .flag("c", "channels")
             .flag("e", "expressions")
             .flag("cn", "constraints")
             .objects(0, -1, true),
         deleteObjects);
  define(registry, "Delete", Syntax(), deleteSelected);
}

}  // namespace host::builtins
