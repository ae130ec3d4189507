#include "host/builtins/poly/history_command.h"

#include <unordered_set>

#include "host/nodes/mesh_shape.h"

namespace host::builtins {

using dg::Node;
using dg::Plug;

Syntax& addHistoryFlags(Syntax& syntax) {
  return syntax.flag("n", "name", {ArgType::String})
      .flag("ch", "constructionHistory", {ArgType::Bool})
      .flag("cch", "caching", {ArgType::Bool})
      .flag("nds", "nodeState", {ArgType::Int});
}

Result<void> setFromFlag(Context& context, Node& node, std::string_view attribute,
                         std::span<const mel::Value> values) {
  dg::Graph& graph = context.document.graph();
  const Plug plug = node.plug(attribute);
  if (!plug) return fail("'{}' has no attribute '{}'.", node.name(), attribute);
  const auto write = [&](const Plug& leaf, const mel::Value& value) -> Result<void> {
    // Flags arrive in cm, radians and seconds already.
    if (value.isString()) return graph.set(leaf, dg::Value(value.string()));
    if (value.isInt()) return graph.set(leaf, dg::Value(std::int64_t{value.intValue()}));
    return graph.set(leaf, dg::Value(value.toFloat().value_or(0)));
  };
  if (!plug.isCompound()) return values.empty() ? Result<void>{} : write(plug, values.front());
  for (std::size_t i = 0; i < plug.attribute()->children.size() && i < values.size(); ++i)
    HOST_TRY(write(plug.child(static_cast<int>(i)), values[i]));
  return {};
}

namespace {

Result<void> setCommon(Context& context, const ParsedArgs& args, Node& node) {
  if (args.has("caching"))
    for (const dg::AttributePtr& attribute : node.type().attributes())
      if (attribute->isComputed)
        HOST_TRY(context.document.graph().setFlag(node.plug(attribute.get()), dg::Graph::PlugFlag::Caching,
                                                  args.boolean("caching")));
  if (args.has("nodeState")) HOST_TRY(setFromFlag(context, node, "nodeState", args.values("nodeState")));
  return {};
}

Result<Node*> insertOne(Context& context, const ParsedArgs& args, const HistoryCommand& command, const MeshItem& item) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const std::vector<Index> ids = item.ids(command.works);
  auto created = document.createNode(command.nodeType, args.text("name", command.nodeType + "#"));
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  std::vector<scene::Component> components;
  components.push_back(item.isObject() ? scene::Component::all(command.works)
                                       : componentFromIds(item.mesh, command.works, ids));
  if (const Plug plug = node.plug("inputComponents"))
    HOST_TRY(graph.set(plug, dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
  HOST_TRY(setCommon(context, args, node));
  HOST_TRY(command.setUp(node, item, ids));
  HOST_TRY(nodes::insertHistoryNode(document, *item.path.node(), node.plug("inputPolymesh"), node.plug("output")));
  if (const Plug manipulation = node.plug("manipMatrix")) {
    const auto instance = static_cast<Index>(item.path.instanceNumber());
    HOST_TRY(graph.connect(item.path.node()->plug("worldMatrix").element(instance), manipulation));
  }
  HOST_TRY(graph.evaluate(node.plug("output")));
  return &node;
}

}  // namespace

Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                   const HistoryCommand& command) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("{}: name or select polygon objects or components.", command.nodeType);
  const bool keepsHistory = args.boolean("constructionHistory", true);
  std::vector<std::string> names;
  for (const MeshItem& item : *items) {
    Node& shape = *item.path.node();
    const bool hadHistory = nodes::hasHistory(shape);
    auto node = insertOne(context, args, command, item);
    if (!node) return failWith(std::move(node.error()));
    if (keepsHistory || hadHistory)
      names.push_back((*node)->name());
    else
      HOST_TRY(nodes::deleteHistory(context.document, shape));
  }
  return names;
}

Result<Node*> findHistoryNode(Context& context, const ParsedArgs& args, std::string_view nodeType) {
  auto list = args.hasObjects() ? args.resolveObjects(context.document)
                                : Result<scene::SelectionList>(context.document.selection());
  if (!list) return failWith(std::move(list.error()));
  for (const scene::SelectionItem& item : list->items()) {
    const scene::DagPath shape = item.isDag() ? item.path.toShape() : scene::DagPath();
    std::vector<Node*> queue{shape.isWorld() ? item.node.get() : shape.node()};
    std::unordered_set<Node*> seen(queue.begin(), queue.end());
    for (std::size_t i = 0; i < queue.size(); ++i) {
      if (queue[i]->type().isA(nodeType)) return queue[i];
      for (const dg::Graph::Connection& connection : context.document.graph().incoming(*queue[i])) {
        Node* from = connection.source.node();
        if (connection.destination.attribute()->top().longName != "instObjGroups" && seen.insert(from).second)
          queue.push_back(from);
      }
    }
  }
  return fail("There is no {} node in the history of what is named or selected.", nodeType);
}

}  // namespace host::builtins
