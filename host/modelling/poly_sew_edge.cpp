#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/sew_edges.h"

namespace host::modelling {

namespace {

Result<void> sew(HistoryContext& context) {
  auto sewn = ops::sewEdges(context.mesh, context.edges(),
                            {.tolerance = context.real("tolerance"),
                             .space = context.space(),
                             .mergesUvs = context.boolean("texture")});
  if (!sewn) return failWith(sewn.error());
  context.makes(sewn->sewn);
  return {};
}

}  // namespace

void polySewEdge(Declarations& add) {
  add("polySewEdge", "Joins border edges that lie on each other, or nearly.")
      .node("polySewEdge", typeCode("PSEW"), "polyModifierWorld")
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(keyable(atLeast(real("tolerance", "t", 1e-5), 0)),
                 "how far ends may lie apart, centimetres")
      .parameter(boolean("texture", "tx", true), "sews the maps there too")
      .trial("-t 1", "e")
      .trial("-t 1 -ws 1", "e")
      .operation(sew);
}

}  // namespace host::modelling
