#include "host/builtins/poly/mesh_objects.h"
#include "host/builtins/poly/modelling_command.h"
#include "host/mesh/shells.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

struct Separated {
  std::vector<dg::Node*> shapes;
  dg::Node* node = nullptr;  ///< null when it was baked
};

/// The pieces become objects under the object's transform; its shape stays as what feeds them.
Result<Separated> separateOne(Context& context, const ParsedArgs& args, const MeshItem& item) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const Index count = mesh::findShells(item.mesh).count;
  const scene::DagPath transform = item.path.transform();
  if (count < 2) return fail("polySeparate: '{}' is one piece.", transform.partialName());
  auto created = document.createNode("polySeparate");
  if (!created) return failWith(std::move(created.error()));
  dg::Node& node = **created;
  HOST_TRY(graph.connect(item.path.node()->plug("outMesh"), node.plug("inputPoly")));
  HOST_TRY(graph.set(node.plug("icount"), std::int64_t{count}));
  Separated result;
  for (Index i = 0; i < count; ++i) {
    auto shape = addMeshObject(document, args.text("name", "polySurface#"),
                               node.plug("output").element(i), transform.node());
    if (!shape) return failWith(std::move(shape.error()));
    HOST_TRY(nodes::evaluatedMesh(**shape));
    result.shapes.push_back(*shape);
  }
  if (args.boolean("constructionHistory", true)) {
    HOST_TRY(makeIntermediate(document, *item.path.node()));
    result.node = &node;
    return result;
  }
  for (dg::Node* shape : result.shapes) HOST_TRY(nodes::deleteHistory(document, *shape));
  HOST_TRY(document.deleteNodes({item.path.node()}));
  return result;
}

CommandResult polySeparate(Context& context, const ParsedArgs& args) {
  if (!args.isCreate()) return editOrQuery(context, args, "polySeparate", {});
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polySeparate: name or select a polygon object.");
  std::vector<scene::DagPath> pieces;
  std::vector<std::string> nodeNames;
  for (const MeshItem& item : *items) {
    auto separated = separateOne(context, args, item);
    if (!separated) return failWith(std::move(separated.error()));
    for (const dg::Node* shape : separated->shapes)
      pieces.push_back(scene::firstPath(*shape).transform());
    if (separated->node) nodeNames.push_back(separated->node->name());
  }
  std::vector<std::string> names;
  for (const scene::DagPath& path : pieces) names.push_back(path.partialName());
  names.insert(names.end(), nodeNames.begin(), nodeNames.end());
  selectObjects(context.document, pieces);
  return toValue(std::move(names));
}

}  // namespace

void registerPolySeparate(CommandRegistry& registry) {
  Syntax syntax;
  addFlags(syntax, {}).editable().queryable().objects(0, -1, true);
  define(registry, "polySeparate", syntax, polySeparate);
}

}  // namespace host::builtins
