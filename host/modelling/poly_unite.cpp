#include "host/math/box.h"
#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/mesh_objects.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/topology/unite.h"

namespace host::modelling {

namespace {

/// The meshes at `inputPoly` with their matrices, in order of the indices; empty slots are left
/// out.
Result<std::vector<ops::UnitePart>> partsOf(DataBlock& block, const Attribute* meshes,
                                            const Attribute* matrices) {
  std::vector<ops::UnitePart> parts;
  const Plug all(&block.node(), meshes), spaces(&block.node(), matrices);
  for (const Index index : block.graph().elementIndices(all)) {
    auto value = block.input(all.element(index));
    if (!value) return failWith(value.error());
    const auto* data = dg::dataAs<scene::MeshData>(*value);
    if (!data) continue;
    const auto space = block.data<dg::MatrixData>(spaces.element(index));
    parts.push_back({data->mesh, space ? space->value : math::Matrix4()});
  }
  return parts;
}

void build(TypeBuilder& builder, const std::vector<const Attribute*>&) {
  const Attribute* meshes = builder.add(array(notStored(dg::makeTyped("inputPoly", "ip", "mesh"))));
  const Attribute* matrices = builder.add(array(nodes::matrix("inputMat", "im")));
  const Attribute* result = builder["output"];
  builder.affects({meshes, matrices}, {result});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result) return Computed::Unhandled;
    const auto parts = partsOf(block, meshes, matrices);
    if (!parts) return failWith(parts.error());
    auto united = ops::unite(*parts);
    if (!united) return failAt(node.name(), united.error());
    block.output(result, dg::DataPtr(std::make_shared<scene::MeshData>(*std::move(united))));
    return Computed::Done;
  };
}

/// Feeds the meshes and the matrices of their places to the node.
Result<void> connectParts(scene::Document& document, Node& node,
                          const std::vector<MeshItem>& items) {
  dg::Graph& graph = document.graph();
  for (std::size_t i = 0; i < items.size(); ++i) {
    Node& shape = *items[i].path.node();
    const auto at = static_cast<Index>(i),
               instance = static_cast<Index>(items[i].path.instanceNumber());
    HOST_TRY(graph.connect(shape.plug("outMesh"), node.plug("inputPoly").element(at)));
    HOST_TRY(graph.connect(shape.plug("worldMatrix").element(instance),
                           node.plug("inputMat").element(at)));
  }
  return {};
}

/// Without history the parts go: with their transforms, where these hold nothing else.
Result<void> deleteParts(scene::Document& document, const std::vector<MeshItem>& items) {
  std::vector<scene::Node*> gone;
  for (const MeshItem& item : items) {
    scene::Node* transform = item.path.transform().node();
    bool holdsMore = false;
    for (scene::Node* child : scene::dagLinks(*transform).children)
      holdsMore = holdsMore || !scene::isShape(*child);
    gone.push_back(holdsMore ? item.path.node() : transform);
  }
  return document.deleteNodes(std::move(gone));
}

/// Puts the pivots of an object that stands at the origin in the middle of its mesh.
Result<void> centrePivots(scene::Document& document, Node& transform, Node& shape) {
  const auto mesh = nodes::evaluatedMesh(shape);
  if (!mesh) return failWith(mesh.error());
  math::Box box;
  for (const math::Vec3f& point : mesh->points()) box.add(math::Vec3(point));
  if (box.isEmpty()) return {};
  HOST_TRY(document.graph().setVec3(transform.plug("rotatePivot"), box.center()));
  return document.graph().setVec3(transform.plug("scalePivot"), box.center());
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->size() < 2) return fail("polyUnite: name or select two or more polygon objects.");
  auto node = document.createNode("polyUnite");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(connectParts(document, **node, *items));
  HOST_TRY(setParameters(context, args, declaration, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  auto shape = addMeshObject(document, declaration.wantedName(args), (*node)->plug("output"));
  if (!shape) return failWith(std::move(shape.error()));
  const bool keepsHistory = args.boolean("constructionHistory", true);
  const std::string nodeName = (*node)->name();
  if (keepsHistory) {
    for (const MeshItem& item : *items) HOST_TRY(makeIntermediate(document, *item.path.node()));
  } else {
    HOST_TRY(nodes::deleteHistory(document, **shape));
    HOST_TRY(deleteParts(document, *items));
  }
  const scene::DagPath transform = scene::firstPath(**shape).transform();
  if (args.has("centerPivot")) HOST_TRY(centrePivots(document, *transform.node(), **shape));
  std::vector<std::string> names{transform.partialName()};
  if (keepsHistory) names.push_back(nodeName);
  selectObjects(document, {transform});
  return mel::Value(std::move(names));
}

}  // namespace

void polyUnite(Declarations& add) {
  add("polyUnite", "Makes one object of several.")
      .node("polyUnite", typeCode("PUNI"), "polyCreator")
      .nodesCalled("polySurface")
      .parameter(choice("mergeUVSets", "muv", {"Do not merge", "By name", "By UV links"}, 1),
                 "UV sets of one name become one")
      .withoutEffect()
      .extraFlag({.shortName = "cp",
                  .longName = "centerPivot",
                  .args = {},
                  .modes = kCreate,
                  .meaning = "puts the new object's pivots in its middle"})
      .builtBy(build)
      .objects(0, -1)
      .creates(create);
}

}  // namespace host::modelling
