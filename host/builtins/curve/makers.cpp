#include "host/builtins/curve/makers.h"

#include "host/cmd/plug_values.h"
#include "host/nodes/sets.h"

namespace host::builtins {

void addMakerFlags(Syntax& syntax, std::span<const MakerFlag> flags, bool hasParts) {
  for (const MakerFlag& flag : flags) {
    syntax.flag(flag.shortName, flag.longName, std::vector<ArgType>(at(flag.count), flag.type));
    if (flag.count != 3 || !hasParts) continue;
    for (int axis = 0; axis < 3; ++axis)
      syntax.flag(std::string(flag.shortName) + "xyz"[axis],
                  std::string(flag.longName) + "XYZ" [axis], { flag.type });
  }
}

Result<void> setMakerFlags(Context& context, const ParsedArgs& args, dg::Node& node,
                           std::span<const MakerFlag> flags) {
  dg::Graph& graph = context.document.graph();
  for (const MakerFlag& flag : flags) {
    const dg::Plug plug = node.plug(flag.longName);
    if (flag.count == 3) {
      for (int axis = 0; axis < 3; ++axis) {
        const std::string part = std::string(flag.longName) + "XYZ"[axis];
        if (args.has(part)) HOST_TRY(graph.set(plug.child(axis), args.real(part)));
      }
    }
    if (!args.has(flag.longName)) continue;
    if (flag.count == 3) {
      HOST_TRY(graph.setVec3(plug, args.vec3(flag.longName)));
    } else if (plug.attribute()->type <= dg::AttributeType::Int64 ||
               !plug.attribute()->enumFields.empty()) {
      HOST_TRY(graph.set(plug, std::int64_t{args.integer(flag.longName)}));
    } else {
      HOST_TRY(graph.set(plug, args.real(flag.longName)));
    }
  }
  return {};
}

Result<dg::Node*> makeCurvedShape(Context& context, const std::string& type,
                                  const std::string& name) {
  scene::Document& document = context.document;
  auto transform = document.createNode("transform", name);
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode(type, shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  if (type == "nurbsSurface") HOST_TRY(nodes::assignInitialShading(document, **shape));
  scene::SelectionList list;
  list.add(*transform);
  document.setSelection(std::move(list));
  return shape->get();
}

namespace {

/// The node that makes a named object.
Result<dg::Node*> makerOf(Context& context, const std::string& name, const Maker& maker) {
  auto node = context.document.node(name);
  if (!node) return failWith(std::move(node.error()));
  if (scene::isDagNode(**node)) {
    const scene::DagPath shape = scene::firstPath(**node).toShape();
    const dg::Plug create = shape.isWorld() ? dg::Plug() : shape.node()->plug("create");
    if (create)
      if (const dg::Plug source = context.document.graph().source(create)) *node = source.node();
  }
  if ((*node)->type().name != maker.nodeType) return fail("{}: '{}' is none.", maker.command, name);
  return *node;
}

}  // namespace

CommandResult runMaker(Context& context, const ParsedArgs& args, const Maker& maker) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  if (!args.isCreate()) {
    const auto node = makerOf(context, args.firstObject(), maker);
    if (!node) return failWith(node.error());
    if (args.isEdit()) {
      HOST_TRY(setMakerFlags(context, args, **node, maker.flags));
      return mel::Value((*node)->name());
    }
    const dg::Plug plug = (*node)->plug(args.queried());
    if (!plug) return fail("{}: say which flag to query.", maker.command);
    return cmd::readPlug(graph, document.units(), plug);
  }
  const auto shape =
      makeCurvedShape(context, maker.shapeType, args.text("name", maker.defaultName));
  if (!shape) return failWith(shape.error());
  auto node = document.createNode(maker.nodeType, std::string(maker.nodeType) + "#");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setMakerFlags(context, args, **node, maker.flags));
  std::vector<std::string> names{nodeName(*scene::firstPath(**shape).transform().node())};
  if (args.boolean("constructionHistory", true)) {
    HOST_TRY(graph.connect((*node)->plug(maker.output), (*shape)->plug("create")));
    names.push_back((*node)->name());
    return toValue(std::move(names));
  }
  auto made = graph.get((*node)->plug(maker.output));
  if (!made) return failWith(std::move(made.error()));
  HOST_TRY(graph.set((*shape)->plug("cached"), *made));
  HOST_TRY(document.deleteNodes({node->get()}));
  return toValue(std::move(names));
}

}  // namespace host::builtins
