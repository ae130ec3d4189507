#include <array>

#include "host/builtins/common/plug_values.h"
#include "host/builtins/poly/history_command.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/sets.h"
#include "host/scene/mesh_data.h"

namespace host::builtins {

namespace {

using dg::Node;

/// A flag that sets an attribute of the primitive's node; several flags may set the same one.
struct PrimitiveFlag {
  const char *shortName, *longName, *attribute;
  ArgType type;
};

struct Primitive {
  const char* command;     ///< also the type of its node
  const char* objectName;  ///< "pCube": the transform's name without its number
  int createUVs;  ///< what the command sets when nobody says; differs from the node's default
  std::vector<PrimitiveFlag> flags;
};

const std::vector<Primitive>& primitives() {
  constexpr ArgType kLength = ArgType::Distance, kCount = ArgType::Int, kSwitch = ArgType::Bool;
  static const std::vector<Primitive> table = {
      {"polyCube",
       "pCube",
       4,
       {{"w", "width", "width", kLength},
        {"h", "height", "height", kLength},
        {"d", "depth", "depth", kLength},
        {"sw", "subdivisionsWidth", "subdivisionsWidth", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sd", "subdivisionsDepth", "subdivisionsDepth", kCount},
        {"sx", "subdivisionsX", "subdivisionsWidth", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount},
        {"sz", "subdivisionsZ", "subdivisionsDepth", kCount},
        {"hbl", "heightBaseline", "heightBaseline", ArgType::Double}}},
      {"polyPlane",
       "pPlane",
       2,
       {{"w", "width", "width", kLength},
        {"h", "height", "height", kLength},
        {"sw", "subdivisionsWidth", "subdivisionsWidth", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sx", "subdivisionsX", "subdivisionsWidth", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount}}},
      {"polySphere",
       "pSphere",
       2,
       {{"r", "radius", "radius", kLength},
        {"sa", "subdivisionsAxis", "subdivisionsAxis", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sx", "subdivisionsX", "subdivisionsAxis", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount}}},
      {"polyCylinder",
       "pCylinder",
       3,
       {{"r", "radius", "radius", kLength},
        {"h", "height", "height", kLength},
        {"sa", "subdivisionsAxis", "subdivisionsAxis", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sc", "subdivisionsCaps", "subdivisionsCaps", kCount},
        {"sx", "subdivisionsX", "subdivisionsAxis", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount},
        {"sz", "subdivisionsZ", "subdivisionsCaps", kCount},
        {"rcp", "roundCap", "roundCap", kSwitch}}},
      {"polyCone",
       "pCone",
       3,
       {{"r", "radius", "radius", kLength},
        {"h", "height", "height", kLength},
        {"sa", "subdivisionsAxis", "subdivisionsAxis", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sc", "subdivisionsCap", "subdivisionsCap", kCount},
        {"sx", "subdivisionsX", "subdivisionsAxis", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount},
        {"sz", "subdivisionsZ", "subdivisionsCap", kCount},
        {"rcp", "roundCap", "roundCap", kSwitch}}},
      {"polyTorus",
       "pTorus",
       1,
       {{"r", "radius", "radius", kLength},
        {"sr", "sectionRadius", "sectionRadius", kLength},
        {"tw", "twist", "twist", ArgType::Angle},
        {"sa", "subdivisionsAxis", "subdivisionsAxis", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sx", "subdivisionsX", "subdivisionsAxis", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount}}},
      {"polyPyramid",
       "pPyramid",
       3,
       {{"w", "sideLength", "sideLength", kLength},
        {"ns", "numberOfSides", "numberOfSides", kCount},
        {"sh", "subdivisionsHeight", "subdivisionsHeight", kCount},
        {"sc", "subdivisionsCaps", "subdivisionsCaps", kCount},
        {"sy", "subdivisionsY", "subdivisionsHeight", kCount},
        {"sz", "subdivisionsZ", "subdivisionsCaps", kCount}}},
  };
  return table;
}

const char* attributeOf(const Primitive& primitive, std::string_view flag) {
  if (flag == "axis" || flag == "createUVs" || flag == "nodeState") return flag.data();
  for (const PrimitiveFlag& each : primitive.flags)
    if (flag == each.longName) return each.attribute;
  return nullptr;
}

Result<void> setParameters(Context& context, const Primitive& primitive, const ParsedArgs& args,
                           Node& node) {
  for (const cmd::ParsedArgs::FlagUse& use : args.flagUses())
    if (const char* attribute = attributeOf(primitive, use.spec->longName))
      HOST_TRY(setFromFlag(context, node, attribute, args.values(use)));
  return {};
}

/// Without history the mesh moves into the shape and its node goes.
Result<void> bake(scene::Document& document, Node& node, Node& shape) {
  auto value = document.graph().get(node.plug("output"));
  if (!value) return failWith(std::move(value.error()));
  const auto* data = dg::dataAs<scene::MeshData>(*value);
  if (!data) return fail("'{}' made no mesh.", node.name());
  HOST_TRY(nodes::setStoredMesh(shape, data->mesh));
  return document.deleteNodes({&node});
}

CommandResult create(Context& context, const Primitive& primitive, const ParsedArgs& args) {
  scene::Document& document = context.document;
  auto transform =
      document.createNode("transform", args.text("name", std::string(primitive.objectName) + "#"));
  if (!transform) return failWith(std::move(transform.error()));
  auto shape = document.createNode("mesh", shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  auto node = document.createNode(primitive.command, std::string(primitive.command) + "#");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(document.graph().set((*node)->plug("createUVs"),
                                dg::Value(std::int64_t{primitive.createUVs})));
  HOST_TRY(setParameters(context, primitive, args, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  std::vector<std::string> names{nodeName(**transform)};
  if (args.boolean("constructionHistory", true)) {
    HOST_TRY(document.graph().connect((*node)->plug("output"), (*shape)->plug("inMesh")));
    names.push_back((*node)->name());
  } else {
    HOST_TRY(bake(document, **node, **shape));
  }
  HOST_TRY(nodes::assignInitialShading(document, **shape));
  scene::SelectionList list;
  list.add(*transform);
  document.setSelection(std::move(list));
  return toValue(std::move(names));
}

CommandResult query(Context& context, const Primitive& primitive, const ParsedArgs& args) {
  auto node = findHistoryNode(context, args, primitive.command);
  if (!node) return failWith(std::move(node.error()));
  const std::string_view flag = args.queried();
  if (flag == "name") return mel::Value((*node)->name());
  if (flag == "constructionHistory") return mel::Value(true);
  const char* attribute = attributeOf(primitive, flag);
  if (!attribute) return fail("{}: '-{}' can't be queried.", primitive.command, flag);
  return readPlug(context.document.graph(), context.document.units(), (*node)->plug(attribute));
}

CommandResult edit(Context& context, const Primitive& primitive, const ParsedArgs& args) {
  auto node = findHistoryNode(context, args, primitive.command);
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setParameters(context, primitive, args, **node));
  HOST_TRY(context.document.graph().evaluate((*node)->plug("output")));
  return mel::Value();
}

}  // namespace

void registerCreatePrimitive(CommandRegistry& registry) {
  for (const Primitive& primitive : primitives()) {
    Syntax syntax;
    for (const PrimitiveFlag& flag : primitive.flags)
      syntax.flag(flag.shortName, flag.longName, {flag.type});
    syntax.flag("ax", "axis", {ArgType::Double, ArgType::Double, ArgType::Double})
        .flag("cuv", "createUVs", {ArgType::Int})
        .flag("tx", "texture", {ArgType::Int})
        .flag("o", "object", {ArgType::Bool});
    addHistoryFlags(syntax).editable().queryable().objects(0, 1);
    define(registry, primitive.command, syntax,
           [&primitive](Context& context, const ParsedArgs& args) {
             if (args.isQuery()) return query(context, primitive, args);
             return args.isEdit() ? edit(context, primitive, args)
                                  : create(context, primitive, args);
           });
  }
}

}  // namespace host::builtins
