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
    if (args.text("objects").empty()) {
      SelectionList found;
      for (const scene::SelectionItem& item : document.selection().items())
        if (isMaterial(*item.node) || nodes::isShadingGroup(*item.node))
          found.merge(objectsOf(*item.node), scene::SelectionMerge::Add);
      document.setSelection(std::move(found));
      return mel::Value("");
    }
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

}  // namespace

void registerHyperShade(CommandRegistry& registry) {
  define(registry, "hyperShade",
         Syntax()
             .flag("a", "assign", {ArgType::String})
             .flag("o", "objects", {ArgType::String})
             .flag("smn", "shaderNetworksSelectMaterialNodes", {ArgType::String}),
         hyperShade);
}

}  // namespace host::builtins
