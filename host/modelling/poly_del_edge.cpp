#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/delete_edges.h"

namespace host::modelling {

namespace {

Result<void> remove(HistoryContext& context) {
  const ops::DeleteEdgesOptions options{context.boolean("cleanVertices")};
  const auto done = ops::deleteEdges(context.mesh, context.edges(), options);
  return done ? Result<void>() : failWith(done.error());
}

}  // namespace

void polyDelEdge(Declarations& add) {
  add("polyDelEdge", "Takes edges away; the faces beside each become one.")
      .node("polyDelEdge", typeCode("PDEG"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Nothing)
      .parameter(boolean("cleanVertices", "cv"), "and vertices that are left with two edges")
      .trial("", "e")
      .trial("-cv 1", "e")
      .operation(remove);
}

}  // namespace host::modelling
