#include "host/modelling/declare/history_command.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

#include "host/base/messages.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/history/history_node.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/uv_pins.h"

namespace host::modelling {

namespace {

/// Sets one attribute from a flag's values.
Result<void> setFromFlag(Context& context, const Plug& plug, std::span<const mel::Value> values) {
  dg::Graph& graph = context.document.graph();
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

/// Primitives take the nearest count that they can have: scripts compute counts, and a slip there
/// (0.1 faces) is told and need not end them.
std::vector<mel::Value> withinLimits(const Declaration& declaration, const Attribute& attribute,
                                     std::span<const mel::Value> values) {
  std::vector<mel::Value> taken(values.begin(), values.end());
  if (!declaration.isPrimitive() || taken.size() != 1 || !taken.front().isInt()) return taken;
  const auto given = static_cast<double>(taken.front().intValue());
  double nearest = given;
  if (attribute.minimum) nearest = std::max(nearest, *attribute.minimum);
  if (attribute.maximum) nearest = std::min(nearest, *attribute.maximum);
  if (nearest == given) return taken;
  postMessage(MessageKind::Warning,
              fmt::format("{}: {} can't be {}: {} is taken", declaration.command,
                          attribute.longName, given, nearest));
  taken.front() = mel::Value(static_cast<int>(nearest));
  return taken;
}

struct FlagTarget {
  const Parameter* parameter = nullptr;
  int child = -1;  ///< of a pair or triple; -1: the attribute itself
};

/// What a flag sets.
FlagTarget targetOf(const std::vector<const Parameter*>& parameters, std::string_view longName) {
  constexpr std::string_view kAxes[] = {"X", "Y", "Z"};
  for (const Parameter* parameter : parameters)
    for (const FlagNames& names : parameter->flags) {
      if (names.longName == longName) return {parameter, -1};
      for (int i = 0; i < static_cast<int>(parameter->attribute->children.size()); ++i)
        if ((i < 3 && longName == names.longName + std::string(kAxes[i])) ||
            longName == parameter->attribute->children[at(i)]->longName)
          return {parameter, i};
    }
  return {};
}

/// What a flag's i-th number is when nobody says otherwise.
std::optional<double> usualNumber(const FlagTarget& target, std::size_t i) {
  const std::vector<AttributePtr>& children = target.parameter->attribute->children;
  const std::size_t child = target.child < 0 ? i : at(target.child);
  if (children.empty() || child >= children.size()) return target.parameter->commandDefault();
  Parameter part;
  part.attribute = children[child];
  return part.commandDefault();
}

/// A recorded parameter takes the numbers that ask for nothing.
Result<void> checkEffect(const Declaration& declaration, const FlagTarget& target,
                         const cmd::FlagSpec& flag, std::span<const mel::Value> values) {
  const Parameter& parameter = *target.parameter;
  if (parameter.effect == Parameter::Effect::Full || parameter.takesAnything) return {};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const mel::Value& value = values[i];
    const double number = value.isString() ? std::nan("") : value.toFloat().value_or(std::nan(""));
    const auto isSame = [&](double taken) { return std::abs(number - taken) < 1e-9; };
    const std::optional<double> usual = usualNumber(target, i);
    if ((usual && isSame(*usual)) ||
        std::any_of(parameter.harmless.begin(), parameter.harmless.end(), isSame))
      continue;
    return fail(ErrorKind::Unsupported,
                "{}: -{} has no effect here, so {} can't be had. Leave it out.",
                declaration.command, flag.longName, value.toText().value_or("that"));
  }
  return {};
}

Result<void> setCommandValues(Context& context, const std::vector<const Parameter*>& parameters,
                              Node& node) {
  for (const Parameter* parameter : parameters)
    if (parameter->commandValue)
      HOST_TRY(context.document.graph().set(node.plug(parameter->attribute->longName),
                                            dg::Value(*parameter->commandValue)));
  return {};
}

Result<void> setCommon(Context& context, const ParsedArgs& args, Node& node) {
  if (args.has("caching"))
    for (const dg::AttributePtr& attribute : node.type().attributes())
      if (attribute->isComputed)
        HOST_TRY(context.document.graph().setFlag(
            node.plug(attribute.get()), dg::Graph::PlugFlag::Caching, args.boolean("caching")));
  if (args.has("nodeState"))
    HOST_TRY(setFromFlag(context, node.plug("nodeState"), args.values("nodeState")));
  return {};
}

/// The components that the node gets; none when the item names nothing that is there.
std::vector<scene::Component> inputOf(const Declaration& command, const MeshItem& item) {
  if (item.isObject()) return {scene::Component::all(command.works)};
  const auto isTaken = [&](const scene::Component& each) {
    const auto& also = command.alsoTakes;
    return each.type() == command.works ||
           std::find(also.begin(), also.end(), each.type()) != also.end();
  };
  std::vector<scene::Component> input;
  const auto add = [&](scene::ComponentType type, std::vector<Index> ids) {
    if (!ids.empty()) input.push_back(nodes::componentFromIds(item.mesh, type, std::move(ids)));
  };
  if (command.alsoTakes.empty() ||
      std::none_of(item.components.begin(), item.components.end(), isTaken)) {
    add(command.works, item.ids(command.works));
    return input;
  }
  for (const scene::Component& component : item.components)
    if (isTaken(component)) add(component.type(), nodes::componentIds(item.mesh, component));
  return input;
}

std::vector<Index> idsOf(const std::vector<scene::Component>& input, const Declaration& command,
                         const MeshItem& item) {
  for (const scene::Component& component : input)
    if (component.type() == command.works) return nodes::componentIds(item.mesh, component);
  return {};
}

/// Where the node goes: in front of the shape, or of its deformers, so that the mesh at rest is
/// what it works on. `seen` becomes the item with that mesh.
Result<Plug> placeOf(Context& context, const ParsedArgs& args, const Declaration& command,
                     MeshItem& seen) {
  const auto hasFlag = [&](std::string_view name) {
    return std::ranges::any_of(command.extraFlags,
                               [&](const ExtraFlag& flag) { return flag.longName == name; });
  };
  const bool isBefore =
      (hasFlag(kBeforeDeformersFlag) && args.boolean(kBeforeDeformersFlag, true)) ||
      (hasFlag(kFrontOfChainFlag) && args.has(kFrontOfChainFlag));
  if (!isBefore) return Plug();
  const Plug place = nodes::arrivalBeforeDeformers(*seen.path.node());
  if (!place) return Plug();
  const auto value = context.document.graph().get(place);
  if (!value) return failWith(value.error());
  if (const auto* data = dg::dataAs<scene::MeshData>(*value)) seen.mesh = data->mesh;
  return place;
}

/// Puts the node's mesh plugs in front of the shape, or of what `place` is the input of.
Result<void> insertAt(scene::Document& document, Node& shape, Node& node, const Plug& place) {
  const Plug input = node.plug("inputPolymesh"), output = node.plug("output");
  if (!place) return nodes::insertHistoryNode(document, shape, input, output);
  dg::Graph& graph = document.graph();
  const Plug source = graph.source(place);
  HOST_TRY(graph.disconnect(source, place));
  HOST_TRY(graph.connect(source, input));
  return graph.connect(output, place);
}

Result<Node*> insertOne(Context& context, const ParsedArgs& args, const Declaration& command,
                        const MeshItem& given) {
  MeshItem item = given;
  const auto place = placeOf(context, args, command, item);
  if (!place) return failWith(place.error());
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  std::vector<scene::Component> components = inputOf(command, item);
  if (components.empty())
    return fail("{}: '{}' has none of the named components.", command.command,
                item.path.transform().partialName());
  const std::vector<Index> ids = idsOf(components, command, item);
  auto created = document.createNode(command.nodeTypes.front().type, command.wantedName(args));
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  if (const Plug plug = node.plug("inputComponents"))
    HOST_TRY(graph.set(
        plug, dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
  if (const Plug plug = node.plug("inputMatrix"))
    HOST_TRY(graph.set(plug,
                       dg::DataPtr(std::make_shared<dg::MatrixData>(item.path.inclusiveMatrix()))));
  HOST_TRY(setParameters(context, args, command, node));
  if (command.after) HOST_TRY(command.after(context, args, node, item, ids));
  nodes::PinCarrier pins(document, *item.path.node(), item.mesh);
  HOST_TRY(insertAt(document, *item.path.node(), node, *place));
  if (const Plug manipulation = node.plug("manipMatrix")) {
    const auto instance = static_cast<Index>(item.path.instanceNumber());
    HOST_TRY(graph.connect(item.path.node()->plug("worldMatrix").element(instance), manipulation));
  }
  const auto made = graph.get(node.plug("output"));
  if (!made) return failWith(made.error());
  if (const auto* data = dg::dataAs<scene::MeshData>(*made)) HOST_TRY(pins.finish(data->mesh));
  return &node;
}

}  // namespace

Result<std::vector<MeshItem>> distinctMeshItems(const scene::SelectionList& list) {
  auto items = nodes::meshItems(list);
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

Result<void> setParameters(Context& context, const ParsedArgs& args, const Declaration& declaration,
                           Node& node) {
  const auto parameters = declarations().parametersOf(declaration);
  if (args.isCreate()) HOST_TRY(setCommandValues(context, parameters, node));
  for (const ParsedArgs::FlagUse& use : args.flagUses()) {
    const FlagTarget target = targetOf(parameters, use.spec->longName);
    if (!target.parameter) continue;
    const auto values = withinLimits(declaration, *target.parameter->attribute, args.values(use));
    HOST_TRY(checkEffect(declaration, target, *use.spec, values));
    const Plug plug = node.plug(target.parameter->attribute->longName);
    HOST_TRY(setFromFlag(context, target.child < 0 ? plug : plug.child(target.child), values));
  }
  return setCommon(context, args, node);
}

Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                   const Declaration& command) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  return runHistoryCommand(context, args, command, *list);
}

Result<std::vector<std::string>> runHistoryCommand(Context& context, const ParsedArgs& args,
                                                   const Declaration& command,
                                                   const scene::SelectionList& list) {
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
  if (command.selected == Leaves::Made) selectMade(context.document, *items, made);
  if (command.selected == Leaves::Nothing) deselectComponents(context.document, *items);
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
  return fail(ErrorKind::NotFound,
              "There is no {} node in the history of what is named or selected.", nodeType);
}

}  // namespace host::modelling
