#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/soft_edges.h"

namespace host::modelling {

namespace {

Result<void> soften(HistoryContext& context) {
  return ops::softenEdges(context.mesh, context.edges(), context.real("angle"), context.space());
}

}  // namespace

void polySoftEdge(Declarations& add) {
  add("polySoftEdge", "Makes edges hard where the faces beside them bend more than an angle.")
      .node("polySoftEdge", typeCode("PSOE"), "polyModifierWorld")
      .takes(ComponentType::Edge)
      .parameter(keyable(angle("angle", "a", std::numbers::pi / 6)),
                 "edges that bend more are hard, others smooth")
      .trial("-a 20", "e")
      .trial("-a 40 -ws 1", "e")
      .operation(soften);
}

}  // namespace host::modelling
