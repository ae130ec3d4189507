#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/append_polygon.h"

namespace host::modelling {

namespace {

Result<void> close(HistoryContext& context) {
  const auto edges = context.edges();
  if (edges.empty()) return {};
  auto faces = ops::closeBorders(context.mesh, edges);
  if (!faces) return failWith(faces.error());
  context.makes(*std::move(faces));
  return {};
}

}  // namespace

void polyCloseBorder(Declarations& add) {
  add("polyCloseBorder", "Closes the holes at border edges by a face each.")
      .node("polyCloseBorder", typeCode("PCBD"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .trial("", "e")
      .operation(close);
}

}  // namespace host::modelling
