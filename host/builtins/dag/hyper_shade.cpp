// hyperShade: puts materials on what is selected and finds what has them. partition: sets that
// share no members.
#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"

namespace host::builtins {

namespace {

using scene::SelectionList;

bool isMaterial(const dg::Node& node) {
  return node.type().classification.starts_with("shader/surface") || node.type().isA("lambert");
}

/// The shading groups that a material feeds.
std::vector<scene::Node*> groupsOf(scene::Node& material) {
  std::vector<scene::Node*> groups;
  for (const dg::Graph::Connection& each : material.graph().outgoing(material)) {
    scene::Node* to = each.destination.node();
    if (each.destination.attribute()->longName == "surfaceShader" && nodes::isShadingGroup(*to) &&
        std::find(groups.begin(), groups.end(), to) == groups.end())
      groups.push_back(to);
  }
  return groups;
}

/// The group of a material, made where it has none; or the group that is named itself.
Result<scene::Node*> groupFor(Context& context, const std::string& name) {
  scene::Document& document = context.document;
  auto node = document.node(name);
  if (!node) return node;
  if (nodes::isShadingGroup(**node)) return node;
  const std::vector<scene::Node*> groups = groupsOf(**node);
  for (scene::Node* group : groups)
    if (group->name() != "initialParticleSE") return group;
  const dg::Plug color = (*node)->plug("outColor");
  if (!color) return fail("hyperShade: {} is no material.", name);
  auto group = document.createNode("shadingEngine", (*node)->name() + "SG");
  if (!group) return failWith(std::move(group.error()));
  dg::Graph& graph = document.graph();
  HOST_TRY(graph.set((*group)->plug("renderableOnlySet"), std::int64_t{1}));
  HOST_TRY(graph.connect(color, (*group)->plug("surfaceShader")));
  if (!document.nodesNamed("renderPartition").empty()) {
    const dg::Plug sets = document.nodesNamed("renderPartition").front()->plug("sets");
    HOST_TRY(graph.connect((*group)->plug("partition"), sets.element(graph.nextFreeIndex(sets))));
  }
  return group->get();
}

/// Everything that a material or a group is on.
SelectionList objectsOf(scene::Node& node) {
  SelectionList list;
  const std::vector<scene::Node*> groups =
      nodes::isShadingGroup(node) ? std::vector<scene::Node*>{&node} : groupsOf(node);
  for (scene::Node* group : groups)
    list.merge(nodes::setMembers(*group), scene::SelectionMerge::Add);
  return list;
}

/// The materials on what is selected, each once.
SelectionList materialsOfSelection(Context& context) {
  SelectionList found;
  const auto add = [&](scene::Node& group) {
    if (!nodes::isShadingGroup(group)) return;
    const dg::Plug shader = group.graph().source(group.plug("surfaceShader"));
    if (shader) found.add(shader.node()->shared_from_this());
  };
  for (scene::SelectionItem item : context.document.selection().items()) {
    if (!item.isDag()) continue;
    const auto shapes = item.isObject() ? item.path.shapes() : std::vector{item.path.toShape()};
    for (const scene::DagPath& shape : shapes) {
      if (item.isObject()) {
        scene::SelectionItem whole;
        whole.node = shape.node()->shared_from_this();
        whole.path = shape;
        for (scene::Node* group : nodes::setsOf(context.document, whole)) add(*group);
        continue;
      }
      if (scene::Node* group = nodes::shadingGroupOfWhole(shape)) add(*group);
      for (const nodes::SetGroup& group : nodes::groupsOf(shape, nullptr)) {
        const bool isMet = std::ranges::any_of(group.components, [&](scene::Component members) {
          return std::ranges::any_of(item.components, [&](const scene::Component& wanted) {
            if (wanted.type() != members.type()) return false;
            members.intersect(wanted, scene::componentCount(shape, wanted.type()));
            return !members.isEmpty();
          });
        });
        if (isMet) add(*group.set);
      }
    }
  }
  return found;
}

CommandResult hyperShade(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.has("assign")) {
    auto group = groupFor(context, args.text("assign"));
    if (!group) return failWith(std::move(group.error()));
    HOST_TRY(nodes::addToSet(document, **group, document.selection()));
    return mel::Value((*group)->name());
  }
  if (args.has("objects")) {
    auto node = document.node(args.text("objects"));
    if (!node) return failWith(std::move(node.error()));
    if (!isMaterial(**node) && !nodes::isShadingGroup(**node) && groupsOf(**node).empty())
      return fail("hyperShade: {} is no material.", args.text("objects"));
    document.setSelection(objectsOf(**node));
    return mel::Value("");
  }
  if (args.has("shaderNetworksSelectMaterialNodes")) {
    document.setSelection(materialsOfSelection(context));
    return mel::Value("");
  }
  return fail("hyperShade: use -assign, -objects or -shaderNetworksSelectMaterialNodes.");
}

Result<scene::Node*> partitionNamed(Context& context, const std::string& name) {
  auto node = context.document.node(name);
  if (!node) return node;
  if (!(*node)->type().isA("partition")) return fail("{} is not a partition.", name);
  return node;
}

std::vector<scene::Node*> setsIn(scene::Node& partition) {
  std::vector<scene::Node*> sets;
  for (const dg::Graph::Connection& each : partition.graph().incoming(partition))
    if (each.destination.attribute()->longName == "sets" && nodes::isSet(*each.source.node()))
      sets.push_back(each.source.node());
  return sets;
}

Result<std::vector<scene::Node*>> setsGiven(Context& context, const ParsedArgs& args) {
  std::vector<scene::Node*> sets;
  for (const std::string& name : args.objectNames()) {
    auto node = context.document.node(name);
    if (!node) return failWith(std::move(node.error()));
    if (!nodes::isSet(**node)) return fail("{} is not a set.", name);
    sets.push_back(*node);
  }
  return sets;
}

/// Sets of one partition share no members, so what joins one may not.
Result<void> addTo(scene::Node& partition, const std::vector<scene::Node*>& sets) {
  dg::Graph& graph = partition.graph();
  for (scene::Node* set : sets) {
    const std::vector<scene::Node*> present = setsIn(partition);
    if (std::find(present.begin(), present.end(), set) != present.end()) continue;
    const SelectionList members = nodes::setMembers(*set);
    for (scene::Node* other : present)
      if (!nodes::intersectionOf(members, nodes::setMembers(*other)).items().empty())
        return fail("partition: '{}' and '{}' share members.", set->name(), other->name());
    const dg::Plug slots = partition.plug("sets");
    HOST_TRY(
        graph.connect(set->plug("partition"), slots.element(graph.nextFreeIndex(slots)), true));
  }
  return {};
}

CommandResult partition(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  if (args.isQuery()) {
    // Of a partition its sets; of a set the partitions that it is in.
    auto node = document.node(args.firstObject());
    if (!node) return failWith(std::move(node.error()));
    std::vector<std::string> names;
    if (args.has("render")) return mel::Value((*node)->name() == "renderPartition");
    if ((*node)->type().isA("partition")) {
      for (const scene::Node* set : setsIn(**node)) names.push_back(set->name());
    } else if (nodes::isSet(**node)) {
      for (const dg::Plug& slot : document.graph().destinations((*node)->plug("partition")))
        names.push_back(slot.node()->name());
    } else {
      return fail("{} is neither a partition nor a set.", args.firstObject());
    }
    return toValue(std::move(names));
  }
  auto sets = setsGiven(context, args);
  if (!sets) return failWith(std::move(sets.error()));
  if (args.has("addSet") || args.has("removeSet")) {
    const bool adds = args.has("addSet");
    auto target = partitionNamed(context, args.text(adds ? "addSet" : "removeSet"));
    if (!target) return failWith(std::move(target.error()));
    if (adds) {
      HOST_TRY(addTo(**target, *sets));
    } else {
      dg::Graph& graph = document.graph();
      for (scene::Node* set : *sets)
        for (const dg::Plug& slot : graph.destinations(set->plug("partition")))
          if (slot.node() == *target) HOST_TRY(graph.disconnect(set->plug("partition"), slot));
    }
    return mel::Value((*target)->name());
  }
  auto made = document.createNode("partition", args.text("name", "partition#"));
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(addTo(**made, *sets));
  return mel::Value((*made)->name());
}

}  // namespace

void registerHyperShade(CommandRegistry& registry) {
  define(registry, "hyperShade",
         Syntax()
             .flag("a", "assign", {ArgType::String})
             .flag("o", "objects", {ArgType::String})
             .flag("smn", "shaderNetworksSelectMaterialNodes", {ArgType::String}),
         hyperShade);
}

void registerPartition(CommandRegistry& registry) {
  define(registry, "partition",
         Syntax()
             .flag("n", "name", {ArgType::String})
             .flag("add", "addSet", {ArgType::String})
             .flag("rm", "removeSet", {ArgType::String})
             .flag("re", "render")
             .queryable()
             .strings(0, -1),
         partition);
}

}  // namespace host::builtins
