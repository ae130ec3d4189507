#include "host/modelling/declare/declaration.h"
#include "host/modelling/declare/edge_flow.h"
#include "host/ops/topology/connect_components.h"

namespace host::modelling {

namespace {

Result<void> connect(HistoryContext& context) {
  auto made = ops::connectComponents(context.mesh, context.vertices(), context.edges());
  if (!made) return failWith(made.error());
  HOST_TRY(followEdgeFlow(context, made->edges));
  context.makes(std::move(made->edges));
  return {};
}

}  // namespace

void polyConnectComponents(Declarations& add) {
  add("polyConnectComponents", "Joins vertices and the middles of edges across their faces.")
      .node("polyConnectComponents", typeCode("PCCP"))
      .takes(ComponentType::Edge, {ComponentType::Vertex})
      .leaves(Leaves::Made)
      .parameter(boolean("insertWithEdgeFlow", "ief"), "new vertices follow the curvature around")
      .parameter(keyable(real("adjustEdgeFlow", "aef", 1)), "how far, with -insertWithEdgeFlow")
      .trial("", "e")
      .trial("", "e vtx")
      .trial("-ief 1", "e")
      .operation(connect);
}

}  // namespace host::modelling
