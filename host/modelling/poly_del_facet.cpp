#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/delete_faces.h"

namespace host::modelling {

namespace {

Result<void> remove(HistoryContext& context) {
  const auto done = ops::deleteFaces(context.mesh, context.faces());
  return done ? Result<void>() : failWith(done.error());
}

}  // namespace

void polyDelFacet(Declarations& add) {
  add("polyDelFacet", "Takes faces away.")
      .node("polyDelFacet", typeCode("PDFC"))
      .takes(ComponentType::Face)
      .leaves(Leaves::Nothing)
      .trial("", "f")
      .operation(remove);
}

}  // namespace host::modelling
