#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/triangulate_faces.h"

namespace host::modelling {

namespace {

Result<void> triangulate(HistoryContext& context) {
  auto made = ops::triangulateFaces(context.mesh, context.faces());
  if (!made) return failWith(made.error());
  context.makes(std::move(made->triangles));
  return {};
}

}  // namespace

void polyTriangulate(Declarations& add) {
  add("polyTriangulate", "Divides faces into triangles.")
      .node("polyTriangulate", typeCode("PTRI"))
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .trial("", "f")
      .operation(triangulate);
}

}  // namespace host::modelling
