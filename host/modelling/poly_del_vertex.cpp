#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/delete_vertices.h"

namespace host::modelling {

namespace {

Result<void> remove(HistoryContext& context) {
  const auto done = ops::deleteVertices(context.mesh, context.vertices());
  return done ? Result<void>() : failWith(done.error());
}

}  // namespace

void polyDelVertex(Declarations& add) {
  add("polyDelVertex", "Takes vertices away; the faces around each become one.")
      .node("polyDelVertex", typeCode("PDVX"))
      .takes(ComponentType::Vertex)
      .leaves(Leaves::Nothing)
      .trial("", "vtx")
      .operation(remove);
}

}  // namespace host::modelling
