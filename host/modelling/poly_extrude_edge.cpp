#include "host/modelling/declare/placement.h"
#include "host/ops/topology/extrude_edges.h"

namespace host::modelling {

namespace {

Result<void> extrude(HistoryContext& context) {
  ops::ExtrudeEdgesOptions options;
  static_cast<ops::ExtrudePlacement&>(options) = extrusionOf(context);
  options.keepEdgesTogether = context.boolean("keepFacesTogether");
  auto made = ops::extrudeEdges(context.mesh, context.edges(), options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->edges));
  return {};
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& edges) {
  return setPlacementFrame(context, args, node, item, edges, ComponentType::Edge);
}

}  // namespace

void polyExtrudeEdge(Declarations& add) {
  Declaration& declaration =
      add("polyExtrudeEdge", "Moves copies of edges; faces join them to what they came from.")
          .node("polyExtrudeEdge", typeCode("PEXE"), "polyModifierWorld")
          .takes(ComponentType::Edge)
          .leaves(Leaves::Made)
          .parameter(boolean("keepFacesTogether", "kft", true),
                     "edges that share a vertex move as one run");
  addExtrusion(declaration);
  declaration.afterFlags(setFrame)
      .trial("-ltz 0.3 -d 2", "e")
      .trial("-kft 0 -tx 0.2 -ry 30 -sx 1.5 -ws 1", "e")
      .operation(extrude);
}

}  // namespace host::modelling
