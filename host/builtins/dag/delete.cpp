#include "host/builtins/common/command.h"
#include "host/builtins/mesh/delete_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"

namespace host::builtins {

namespace {

Result<void> deleteHistoryBelow(scene::Document& document, const scene::DagPath& path) {
  for (const scene::DagPath& shape : nodes::meshPaths(path))
    if (nodes::hasHistory(*shape.node())) HOST_TRY(nodes::deleteHistory(document, *shape.node()));
  // A copy: hidden originals go with the history that they began.
  const std::vector<scene::Node*> children = scene::dagLinks(*path.node()).children;
  for (scene::Node* child : children)
    if (scene::isTransform(*child)) HOST_TRY(deleteHistoryBelow(document, path.child(child)));
  return {};
}

Result<void> deleteHistoryOf(scene::Document& document, const scene::SelectionList& list) {
  for (const scene::SelectionItem& item : list.items())
    if (item.isDag() && item.node->isAlive()) HOST_TRY(deleteHistoryBelow(document, item.path));
  return {};
}

scene::SelectionList everything(const scene::Document& document) {
  scene::SelectionList list;
  for (const scene::Node* node : document.worldChildren()) list.add(scene::firstPath(*node));
  return list;
}

CommandResult deleteObjects(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  if (args.has("constructionHistory")) {
    HOST_TRY(deleteHistoryOf(document, args.has("all") ? everything(document) : *list));
    return mel::Value();
  }
  // These name what drives objects, never the objects; there are no such drivers here to delete.
  if (args.has("channels") || args.has("expressions") || args.has("constraints"))
    return mel::Value();
  if (args.has("all")) {
    *list = {};
    for (scene::Node* node : document.worldChildren())
      if (!node->isDefault()) list->add(scene::firstPath(*node));
  }
  if (list->isEmpty()) return mel::Value();
  auto componentNodes = deleteComponents(document, *list);
  if (!componentNodes) return failWith(std::move(componentNodes.error()));
  std::vector<scene::Node*> nodes;
  for (const scene::SelectionItem& item : list->items()) {
    if (item.plug) {
      // A plug stands for the connection that drives it.
      if (const dg::Plug source = document.graph().source(item.plug))
        HOST_TRY(document.graph().disconnect(source, item.plug));
      continue;
    }
    if (!item.isObject()) continue;
    const bool isInstance = item.isDag() && !scene::hasOnePath(*item.node) &&
                            scene::dagLinks(*item.node).parents.size() > 1;
    if (isInstance)
      HOST_TRY(document.removeInstance(item.path));
    else
      nodes.push_back(item.node.get());
  }
  HOST_TRY(document.deleteNodes(std::move(nodes)));
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
}

}  // namespace host::builtins
