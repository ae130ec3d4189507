#include "host/builtins/poly/mesh_objects.h"
#include "host/builtins/poly/modelling_command.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

const HistoryFlags& flags() {
  static const HistoryFlags table = {{"tx", "texture", {ArgType::Int}}};
  return table;
}

Result<void> setPoints(Context& context, const ParsedArgs& args, dg::Node& node) {
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

CommandResult polyCreateFacet(Context& context, const ParsedArgs& args) {
  if (!args.isCreate()) return editOrQuery(context, args, "polyCreateFace", flags());
  if (args.integer("subdivision", 1) != 1)
    return fail("polyCreateFacet: edges can't be subdivided here; use polySubdivideEdge.");
  scene::Document& document = context.document;
  auto node = document.createNode("polyCreateFace");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(setPoints(context, args, **node));
  HOST_TRY(applyFlags(context, flags(), args, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  auto shape = addMeshObject(document, args.text("name", "polySurface#"), (*node)->plug("output"));
  if (!shape) return failWith(std::move(shape.error()));
  const scene::DagPath transform = scene::firstPath(**shape).transform();
  std::vector<std::string> names{transform.partialName()};
  if (args.boolean("constructionHistory", true))
    names.push_back((*node)->name());
  else
    HOST_TRY(nodes::deleteHistory(document, **shape));
  selectObjects(document, {transform});
  return toValue(std::move(names));
}

}  // namespace

void registerPolyCreateFacet(CommandRegistry& registry) {
  constexpr ArgType kLength = ArgType::Distance;
  Syntax syntax;
  syntax.flag("p", "point", {kLength, kLength, kLength}).multiUse();
  syntax.flag("s", "subdivision", {ArgType::Int});
  addFlags(syntax, flags()).editable().queryable().objects(0, 1, true);
  define(registry, "polyCreateFacet", syntax, polyCreateFacet);
}

}  // namespace host::builtins
