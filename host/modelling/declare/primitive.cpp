#include "host/modelling/declare/primitive.h"

#include <algorithm>

#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/mesh_objects.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/sets.h"
#include "host/scene/name_index.h"
#include "host/scene/node_names.h"

namespace host::modelling {

namespace {

/// Without history the mesh moves into the shape and its node goes.
Result<void> bake(scene::Document& document, Node& node, Node& shape) {
  auto value = document.graph().get(node.plug("output"));
  if (!value) return failWith(std::move(value.error()));
  const auto* data = dg::dataAs<scene::MeshData>(*value);
  if (!data) return fail("'{}' made no mesh.", node.name());
  HOST_TRY(nodes::setStoredMesh(shape, data->mesh));
  return document.deleteNodes({&node});
}

Result<Node*> makeNode(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto node = context.document.createNode(declaration.nodeTypes.front().type,
                                          declaration.nodeTypes.front().type + "#");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setParameters(context, args, declaration, **node));
  HOST_TRY(context.document.graph().evaluate((*node)->plug("output")));
  return node->get();
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  scene::Document& document = context.document;
  if (!args.boolean("object", true)) {
    auto alone = makeNode(context, args, declaration);
    if (!alone) return failWith(std::move(alone.error()));
    return mel::Value(std::vector<std::string>{(*alone)->name()});
  }
  auto transform = document.createNode("transform", declaration.wantedName(args));
  if (!transform) return failWith(std::move(transform.error()));
  auto shape =
      document.createNode("mesh", scene::shapeNameFor((*transform)->name()), transform->get());
  if (!shape) return failWith(std::move(shape.error()));
  auto node = makeNode(context, args, declaration);
  if (!node) return failWith(std::move(node.error()));
  std::vector<std::string> names{scene::nodeName(**transform)};
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
  return mel::Value(std::move(names));
}

/// Moves the mesh along the axis so that the height asked for lies at the origin.
Result<void> raise(mesh::Mesh& mesh, const math::Vec3& axis, double baseline) {
  const math::Vec3 up = math::normalized(axis);
  double low = 0, high = 0;
  for (const math::Vec3f& point : mesh.points()) {
    const double height = math::dot(math::Vec3(point), up);
    low = std::min(low, height);
    high = std::max(high, height);
  }
  const math::Vec3 by = up * (-baseline * (high - low) * 0.5);
  if (!math::isFinite(by))
    return fail(ErrorKind::BadArgument, "heightBaseline must be a finite number");
  for (math::Vec3f& point : mesh.editPoints()) point = (math::Vec3(point) + by).toFloat();
  return {};
}

}  // namespace

Declaration& primitive(Declaration& declaration, const std::string& objectName,
                       std::initializer_list<std::string_view> uvModes, int uvMode) {
  AttributePtr uvs = choice("createUVs", "cuv", uvModes, uvMode);
  std::string meaning;
  for (const dg::EnumField& field : uvs->enumFields)
    meaning += fmt::format("{}{} {}", meaning.empty() ? "" : ", ", field.value, field.name);
  return declaration.nodesCalled(objectName)
      .parameter(limited(std::move(uvs), 0, static_cast<double>(uvModes.size()) - 1),
                 "UVs: " + meaning)
      .extraFlag({.shortName = "o",
                  .longName = "object",
                  .args = {ArgType::Bool},
                  .modes = kCreate,
                  .meaning = "off makes the node alone, without an object"})
      .objects(0, 1)
      .creates(create);
}

Declaration& addAroundAxis(Declaration& declaration, std::string radiusHelp) {
  return declaration.parameter(keyable(distance("radius", "r", 1)), std::move(radiusHelp))
      .parameter(keyable(distance("height", "h", 2)), "size along the axis")
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)),
                 "faces around the axis")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY");
}

Result<void> finishPrimitive(HistoryContext& context, Result<mesh::Mesh> made, Baseline baseline) {
  if (!made) return failWith(std::move(made.error()));
  const double height = context.real("heightBaseline");
  if (baseline == Baseline::Raise && height != 0)
    HOST_TRY(raise(*made, context.vec3("axis"), height));
  if (const std::string name = context.text("uvSetName"); !name.empty() && made->uvSetCount() > 0)
    made->editUvSet(0).name = name;
  context.mesh = *std::move(made);
  return {};
}

}  // namespace host::modelling
