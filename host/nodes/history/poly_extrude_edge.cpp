#include "host/nodes/history/extrude_attributes.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/extrude_edges.h"

namespace host::nodes {

void registerPolyExtrudeEdge(dg::TypeRegistry& types) {
  HistoryNodeBuilder builder(types, "polyExtrudeEdge", typeCode("PEXE"), "polyModifierWorld");
  builder.parameter(boolean("keepFacesTogether", "kft", true));
  addExtrudeAttributes(builder);
  builder.operation([](HistoryContext& context) -> Result<void> {
    ops::ExtrudeEdgesOptions options;
    static_cast<ops::ExtrudePlacement&>(options) = extrudePlacement(context);
    options.keepEdgesTogether = context.boolean("keepFacesTogether");
    auto made = ops::extrudeEdges(context.mesh, context.edges(), options);
    if (!made) return failWith(made.error());
    context.makes(scene::ComponentType::Edge, std::move(made->edges));
    return {};
  });
}

}  // namespace host::nodes
