#include "host/builtins/poly/mesh_objects.h"
#include "host/builtins/poly/modelling_command.h"
#include "host/edits/xform.h"
#include "host/nodes/mesh_shape.h"

namespace host::builtins {

namespace {

const HistoryFlags& flags() {
  static const HistoryFlags table = {{"muv", "mergeUVSets", {ArgType::Int}}};
  return table;
}

/// Feeds the meshes and the matrices of their places to the node.
Result<void> connectParts(scene::Document& document, dg::Node& node,
                          const std::vector<MeshItem>& items) {
  dg::Graph& graph = document.graph();
  for (std::size_t i = 0; i < items.size(); ++i) {
    dg::Node& shape = *items[i].path.node();
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

CommandResult polyUnite(Context& context, const ParsedArgs& args) {
  if (!args.isCreate()) return editOrQuery(context, args, "polyUnite", flags());
  scene::Document& document = context.document;
  auto list = args.resolveObjects(document);
  if (!list) return failWith(std::move(list.error()));
  auto items = distinctMeshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  if (items->size() < 2) return fail("polyUnite: name or select two or more polygon objects.");
  auto node = document.createNode("polyUnite");
  if (!node) return failWith(std::move(node.error()));
  HOST_TRY(connectParts(document, **node, *items));
  HOST_TRY(applyFlags(context, flags(), args, **node));
  HOST_TRY(document.graph().evaluate((*node)->plug("output")));
  auto shape = addMeshObject(document, args.text("name", "polySurface#"), (*node)->plug("output"));
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
  std::vector<std::string> names{transform.partialName()};
  if (keepsHistory) names.push_back(nodeName);
  selectObjects(document, {transform});
  if (args.has("centerPivot"))
    HOST_TRY(edits::xform(document, document.selection(), {.centersPivots = true}));
  return toValue(std::move(names));
}

}  // namespace

void registerPolyUnite(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("cp", "centerPivot");
  addFlags(syntax, flags()).editable().queryable().objects(0, -1, true);
  define(registry, "polyUnite", syntax, polyUnite);
}

}  // namespace host::builtins
