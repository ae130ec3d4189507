#include <algorithm>

#include "host/base/cancel_poll.h"
#include "host/mesh/shells.h"
#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/mesh_objects.h"
#include "host/nodes/history/group_carry.h"
#include "host/nodes/mesh_shape.h"
#include "host/nodes/set_group.h"
#include "host/nodes/sets.h"
#include "host/ops/topology/separate.h"

namespace host::modelling {

namespace {

void dropShells(std::vector<mesh::Mesh>& parts,
                const std::shared_ptr<const dg::IntArrayData>& removed) {
  if (!removed) return;
  std::vector<mesh::Mesh> kept;
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (std::ranges::find(removed->value, static_cast<std::int32_t>(i)) == removed->value.end())
      kept.push_back(std::move(parts[i]));
  parts = std::move(kept);
}

void build(TypeBuilder& builder, const std::vector<const Attribute*>& parameters) {
  builder.livesByItsOutputs();
  const Attribute *count = parameters.front(), *removed = parameters[1];
  const Attribute* input = builder.add(notStored(dg::makeTyped("inputPoly", "ip", "mesh")));
  const Attribute* results =
      builder.add(array(nodes::output(dg::makeTyped("output", "out", "mesh"))));
  builder.affects({input, removed}, {results});
  builder.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != results) return Computed::Unhandled;
    auto arriving = block.input(Plug(&node, input));
    if (!arriving) return failWith(arriving.error());
    const auto* data = dg::dataAs<scene::MeshData>(*arriving);
    const mesh::Mesh whole = data ? data->mesh : mesh::Mesh();
    const mesh::ProvenanceTrail trail(whole);
    auto separated =
        cancellable([&]() -> Result<std::vector<mesh::Mesh>> { return ops::separate(whole); });
    if (!separated) return failWith(std::move(separated.error()));
    std::vector<mesh::Mesh> parts = *std::move(separated);
    dropShells(parts, block.data<dg::IntArrayData>(Plug(&node, removed)));
    const Plug all(&node, results);
    const auto promised = static_cast<std::size_t>(std::max<std::int64_t>(1, block.integer(count)));
    // Pieces that an edit upstream took away arrive as empty meshes.
    parts.resize(std::max({promised, parts.size(), at(plug.logicalIndex() + 1)}));
    for (std::size_t i = 0; i < parts.size(); ++i) {
      scene::MeshGroupsPtr groups;
      if (data && data->groups)
        groups = nodes::carriedGroups(data->groups, parts[i], trail.to(parts[i]));
      block.output(
          all.element(static_cast<Index>(i)),
          dg::DataPtr(std::make_shared<scene::MeshData>(std::move(parts[i]), std::move(groups))));
    }
    return Computed::Done;
  };
}

struct Separated {
  std::vector<Node*> shapes;
  Node* node = nullptr;  ///< null when it was baked
};

/// A piece is where the object was.
Result<void> joinShading(scene::Document& document, Node& shape, Node* whole,
                         const std::vector<nodes::ComingGroup>& groups) {
  scene::SelectionList piece;
  piece.add(scene::firstPath(shape));
  if (whole)
    HOST_TRY(nodes::addToSet(document, *whole, piece));
  else if (Node* initial = nodes::shadingGroupOfWhole(scene::firstPath(shape)))
    HOST_TRY(nodes::removeFromSet(document, *initial, piece));
  return nodes::joinGroups(document, shape, groups);
}

/// Keeps the pieces that -removeShells names out of the node's results.
/// @return how many are left
Result<Index> leaveOut(dg::Graph& graph, const ParsedArgs& args, Node& node, Index count) {
  std::vector<std::int32_t> shells;
  for (int use = 0; use < args.uses("removeShells"); ++use) {
    const std::int32_t shell = args.values("removeShells", use).front().intValue();
    if (shell < 0 || shell >= count)
      return fail("polySeparate: there is no piece {} of {} to remove.", shell, count);
    shells.push_back(shell);
  }
  std::ranges::sort(shells);
  shells.erase(std::unique(shells.begin(), shells.end()), shells.end());
  if (shells.empty()) return count;
  if (static_cast<Index>(shells.size()) >= count)
    return fail("polySeparate: -removeShells leaves no piece.");
  const Index left = count - static_cast<Index>(shells.size());
  HOST_TRY(graph.set(node.plug("remShells"),
                     dg::DataPtr(std::make_shared<dg::IntArrayData>(std::move(shells)))));
  return left;
}

/// The pieces become objects under the object's transform; its shape stays as what feeds them.
Result<Separated> separateOne(Context& context, const ParsedArgs& args,
                              const Declaration& declaration, const MeshItem& item) {
  scene::Document& document = context.document;
  dg::Graph& graph = document.graph();
  const Index count = mesh::findShells(item.mesh).count;
  const scene::DagPath transform = item.path.transform();
  if (count < 2) return fail("polySeparate: '{}' is one piece.", transform.partialName());
  auto created = document.createNode("polySeparate");
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  std::vector<nodes::ComingGroup> groups;
  const auto source =
      nodes::bringAllGroups(document, item.path, item.path.node()->plug("outMesh"), false, groups);
  if (!source) return failWith(source.error());
  HOST_TRY(graph.connect(*source, node.plug("inputPoly")));
  Node* const whole = nodes::shadingGroupOfWhole(item.path);
  HOST_TRY(setParameters(context, args, declaration, node));
  HOST_TRY(graph.set(node.plug("icount"), std::int64_t{count}));
  const auto left = leaveOut(graph, args, node, count);
  if (!left) return failWith(left.error());
  Separated result;
  for (Index i = 0; i < *left; ++i) {
    auto shape = addMeshObject(document, declaration.wantedName(args),
                               node.plug("output").element(i), transform.node());
    if (!shape) return failWith(std::move(shape.error()));
    HOST_TRY(nodes::evaluatedMesh(**shape));
    HOST_TRY(joinShading(document, **shape, whole, groups));
    result.shapes.push_back(*shape);
  }
  if (args.boolean("constructionHistory", true)) {
    HOST_TRY(makeIntermediate(document, *item.path.node()));
    result.node = &node;
    return result;
  }
  for (Node* shape : result.shapes) HOST_TRY(nodes::deleteHistory(document, *shape));
  HOST_TRY(document.deleteNodes({item.path.node()}));
  return result;
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("polySeparate: name or select a polygon object.");
  std::vector<scene::DagPath> pieces;
  std::vector<std::string> nodeNames;
  for (const MeshItem& item : *items) {
    auto separated = separateOne(context, args, declaration, item);
    if (!separated) return failWith(std::move(separated.error()));
    for (const Node* shape : separated->shapes)
      pieces.push_back(scene::firstPath(*shape).transform());
    if (separated->node) nodeNames.push_back(separated->node->name());
  }
  std::vector<std::string> names;
  for (const scene::DagPath& path : pieces) names.push_back(path.partialName());
  names.insert(names.end(), nodeNames.begin(), nodeNames.end());
  selectObjects(context.document, pieces);
  return mel::Value(std::move(names));
}

}  // namespace

void polySeparate(Declarations& add) {
  add("polySeparate", "Makes an object of each piece of an object.")
      .node("polySeparate", typeCode("PSEP"), "")
      .nodesCalled("polySurface")
      .parameter(hidden(integer("icount", "ic", -1)), "how many pieces there were")
      .noFlag()
      .parameter(dg::makeTyped("remShells", "rs", "Int32Array"), "pieces left out")
      .noFlag()
      .extraFlag({.shortName = "rs",
                  .longName = "removeShells",
                  .args = {ArgType::Int},
                  .modes = kCreate,
                  .isMultiUse = true,
                  .meaning = "a piece to leave out, by its number"})
      .builtBy(build)
      .creates(create);
}

}  // namespace host::modelling
