#include <array>

#include "host/modelling/declare/history_command.h"
#include "host/modelling/declare/mesh_objects.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/topology/append_polygon.h"
#include "host/ops/uv/edit_uvs.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  std::vector<Index> indices;
  std::vector<double> values;
  context.packed("vertices", indices, values);
  std::vector<math::Vec3> points;
  for (std::size_t i = 0; i + 2 < values.size(); i += 3)
    points.emplace_back(values[i], values[i + 1], values[i + 2]);
  auto made = ops::createPolygon(points);
  if (!made) return failWith(made.error());
  context.mesh = *std::move(made);
  // 0 none, 1 the polygon's own shape, 2 the corners of the unit square.
  const std::int64_t texture = context.integer("texture");
  if (texture == 0) context.mesh.setUvSet(0, {context.mesh.uvSet(0).name, {}, {}});
  if (texture == 2) ops::unitizeUvs(context.mesh, 0, std::array{FaceId{0}});
  return {};
}

Result<void> setPoints(Context& context, const ParsedArgs& args, Node& node) {
  std::vector<Index> indices;
  std::vector<double> values;
  for (int i = 0; i < args.uses("point"); ++i) {
    indices.push_back(i);
    for (const mel::Value& value : args.values("point", i))
      values.push_back(value.toFloat().value_or(0));
  }
  dg::Graph& graph = context.document.graph();
  const auto count = static_cast<double>(indices.size());
  HOST_TRY(graph.setPacked(node.plug("vertices"), std::move(indices), std::move(values)));
  return graph.setPacked(node.plug("loop"), {0}, {count});
}

CommandResult create(Context& context, const ParsedArgs& args, const Declaration& declaration) {
  scene::Document& document = context.document;
  auto node = document.createNode("polyCreateFace");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setPoints(context, args, **node));
  HOST_TRY(setParameters(context, args, declaration, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  auto shape = addMeshObject(document, declaration.wantedName(args), (*node)->plug("output"));
  if (!shape) return failWith(std::move(shape.error()));
  const scene::DagPath transform = scene::firstPath(**shape).transform();
  std::vector<std::string> names{transform.partialName()};
  if (args.boolean("constructionHistory", true))
    names.push_back((*node)->name());
  else
    HOST_TRY(nodes::deleteHistory(document, **shape));
  selectObjects(document, {transform});
  return mel::Value(std::move(names));
}

}  // namespace

void polyCreateFacet(Declarations& add) {
  constexpr ArgType kLength = ArgType::Distance;
  add("polyCreateFacet", "Makes an object of one polygon.")
      .node("polyCreateFace", typeCode("PCRF"), "polyCreator")
      .nodesCalled("polySurface")
      .parameter(
          array(numbers("vertices", "v", "float3",
                        {distance("vtxx", "vx"), distance("vtxy", "vy"), distance("vtxz", "vz")})),
          "the corners")
      .parameter(array(integer("loop", "l")), "how many corners each loop has")
      .parameter(integer("subdivision", "s", 1), "pieces of each edge; polySubdivideEdge cuts them")
      .withoutEffect()
      .parameter(choice("texture", "tx", {"None", "Normalize", "Unitize"}), "UVs of the polygon")
      .parameter(text("uvSetName", "uvs"), "name of the UV set")
      .noFlag()
      .recordedOnly()
      .extraFlag({.shortName = "p",
                  .longName = "point",
                  .args = {kLength, kLength, kLength},
                  .isMultiUse = true,
                  .meaning = "a corner"})
      .objects(0, 1)
      .creates(create)
      .operation(make);
}

}  // namespace host::modelling
