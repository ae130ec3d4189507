#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/edge_flow.h"

namespace host::modelling {

namespace {

Result<void> flow(HistoryContext& context) {
  if (!context.boolean("edgeFlow")) return {};
  const auto moved =
      ops::editEdgeFlow(context.mesh, context.edges(), context.real("adjustEdgeFlow"));
  return moved ? Result<void>() : failWith(moved.error());
}

}  // namespace

void polyEditEdgeFlow(Declarations& add) {
  add("polyEditEdgeFlow", "Moves edges so that the surface follows the curvature around them.")
      .node("polyEditEdgeFlow", typeCode("PEEF"))
      .takes(ComponentType::Edge)
      .parameter(keyable(single("adjustEdgeFlow", "aef", 1)),
                 "1 onto the curve, 0 straight between the neighbours, -1 mirrored")
      .parameter(boolean("edgeFlow", "ef", true), "off leaves the edges where they are")
      .trial("", "e")
      .trial("-aef 0", "e")
      .operation(flow);
}

}  // namespace host::modelling
