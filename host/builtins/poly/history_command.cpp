#include "host/builtins/poly/history_command.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/nodes/history/history_node.h"
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
        HOST_TRY(context.document.graph().setFlag(
            node.plug(attribute.get()), dg::Graph::PlugFlag::Caching, args.boolean("caching")));
  if (args.has("nodeState"))
    HOST_TRY(setFromFlag(context, node, "nodeState", args.values("nodeState")));
  return {};
}

/// The components that the node gets; none when the item names nothing that is there.
std::vector<scene::Component> inputOf(const HistoryCommand& command, const MeshItem& item) {
  if (item.isObject()) return {scene::Component::all(command.works)};
  const auto isTaken = [&](const scene::Component& each) {
    const auto& also = command.alsoTakes;
    return each.type() == command.works ||
           std::find(also.begin(), also.end(), each.type()) != also.end();
  };
  std::vector<scene::Component> input;
  const auto add = [&](scene::ComponentType type, std::vector<Index> ids) {
    if (!ids.empty()) input.push_back(componentFromIds(item.mesh, type, std::move(ids)));
  };
  if (command.alsoTakes.empty() ||
      std::none_of(item.components.begin(), item.components.end(), isTaken)) {
    add(command.works, item.ids(command.works));
    return input;
  }
  for (const scene::Component& component : item.components)
    if (isTaken(component)) add(component.type(), componentIds(item.mesh, component));
  return input;
}

std::vector<Index> idsOf(const std::vector<scene::Component>& input, const HistoryCommand& command,
                         const MeshItem& item) {
  for (const scene::Component& component : input)
    if (component.type() == command.works) return componentIds(item.mesh, component);
  return {};
}

Result<Node*> insertOne(Context& context, const ParsedArgs& args, const HistoryCommand& command,
                        const MeshItem& item) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  std::vector<scene::Component> components = inputOf(command, item);
  if (components.empty())
    return fail("{}: '{}' has none of the named components.", command.command,
                item.path.transform().partialName());
  const std::vector<Index> ids = idsOf(components, command, item);
  auto created = document.createNode(command.nodeType, args.text("name", command.nodeName + "#"));
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  if (const Plug plug = node.plug("inputComponents"))
    HOST_TRY(graph.set(
        plug, dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
  if (const Plug plug = node.plug("inputMatrix"))
    HOST_TRY(graph.set(plug,
                       dg::DataPtr(std::make_shared<dg::MatrixData>(item.path.inclusiveMatrix()))));
  HOST_TRY(setCommon(context, args, node));
  HOST_TRY(command.setUp(node, item, ids));
  HOST_TRY(nodes::insertHistoryNode(document, *item.path.node(), node.plug("inputPolymesh"),
                                    node.plug("output")));
  if (const Plug manipulation = node.plug("manipMatrix")) {
    const auto instance = static_cast<Index>(item.path.instanceNumber());
    HOST_TRY(graph.connect(item.path.node()->plug("worldMatrix").element(instance), manipulation));
  }
  HOST_TRY(graph.evaluate(node.plug("output")));
  return &node;
}

}  // namespace

Result<std::vector<MeshItem>> distinctMeshItems(const scene::SelectionList& list) {
  auto items = meshItems(list);
  if (!items) return items;
  std::vector<MeshItem> distinct;
  std::unordered_map<const Node*, std::size_t> known;
  for (MeshItem& item : *items) {
    const auto [at, isNew] = known.try_emplace(item.path.node(), distinct.size());
    if (isNew) {
      distinct.push_back(std::move(item));
      continue;
    }
    std::vector<scene::Component>& components = distinct[at->second].components;
    if (item.isObject()) components.clear();
    if (components.empty()) continue;
    for (scene::Component& component : item.components) {
      const auto same = std::find_if(components.begin(), components.end(), [&](const auto& each) {
        return each.type() == component.type();
      });
      if (same == components.end())
        components.push_back(std::move(component));
      else
        same->unite(component);
    }
  }
  return distinct;
}

void deselectComponents(scene::Document& document, const std::vector<MeshItem>& items) {
  std::unordered_set<const Node*> shapes;
  for (const MeshItem& item : items) shapes.insert(item.path.node());
  document.setSelection(document.selection().filtered([&](const scene::SelectionItem& item) {
    return item.components.empty() || !shapes.contains(item.path.toShape().node());
  }));
}

void selectMade(scene::Document& document, const std::vector<MeshItem>& items,
                const std::vector<std::vector<scene::Component>>& made) {
  if (std::all_of(items.begin(), items.end(), [](const MeshItem& item) { return item.isObject(); }))
    return;
  scene::SelectionList list, hilite = document.hilite();
  for (std::size_t i = 0; i < items.size(); ++i) {
    const scene::DagPath transform = items[i].path.transform();
    if (items[i].isObject()) {
      list.add(transform);
      continue;
    }
    for (const scene::Component& component : made[i]) {
      if (component.isEmpty()) continue;
      const Index count =
          component.isComplete() ? scene::componentCount(items[i].path, component.type()) : 0;
      list.add(items[i].path, component.isComplete()
                                  ? scene::Component(component.type(), component.expanded(count))
                                  : component);
      hilite.add(transform);
    }
  }
  document.setHilite(std::move(hilite));
  document.setSelection(std::move(list));
}

Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                   const HistoryCommand& command) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  return runHistoryCommand(context, args, command, *list);
}

Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                   const HistoryCommand& asked,
                                                   const scene::SelectionList& list) {
  HistoryCommand command = asked;
  if (command.nodeName.empty()) command.nodeName = command.nodeType;
  if (command.command.empty()) command.command = command.nodeType;
  auto items = distinctMeshItems(list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty())
    return fail("{}: name or select polygon objects or components.", command.command);
  const bool keepsHistory = args.boolean("constructionHistory", true);
  std::vector<std::string> names;
  std::vector<std::vector<scene::Component>> made;
  for (const MeshItem& item : *items) {
    Node& shape = *item.path.node();
    const bool hadHistory = nodes::hasHistory(shape);
    auto node = insertOne(context, args, command, item);
    if (!node) return failWith(std::move(node.error()));
    made.push_back(nodes::componentsMade(**node));
    if (keepsHistory || hadHistory)
      names.push_back((*node)->name());
    else
      HOST_TRY(nodes::deleteHistory(context.document, shape));
  }
  if (command.leaves == Leaves::Made) selectMade(context.document, *items, made);
  if (command.leaves == Leaves::Nothing) deselectComponents(context.document, *items);
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
        if (connection.destination.attribute()->top().longName != "instObjGroups" &&
            seen.insert(from).second)
          queue.push_back(from);
      }
    }
  }
  return fail("There is no {} node in the history of what is named or selected.", nodeType);
}

}  // namespace host::builtins
