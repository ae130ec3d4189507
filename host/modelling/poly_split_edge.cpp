#include "host/mesh/adjacency.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/detach_components.h"

namespace host::modelling {

namespace {

Result<void> split(HistoryContext& context) {
  const auto operation = context.choice("operation", 2);
  if (!operation) return failWith(operation.error());
  std::vector<EdgeId> edges = context.edges();
  // 0 parts only where more than two faces meet.
  if (*operation == 0)
    std::erase_if(
        edges, [&](EdgeId edge) { return context.mesh.adjacency().edgeFaces(edge).size() <= 2; });
  auto made = ops::detachEdges(context.mesh, edges);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->vertices));
  return {};
}

}  // namespace

void polySplitEdge(Declarations& add) {
  add("polySplitEdge", "Parts the mesh along edges.")
      .node("polySplitEdge", typeCode("PSED"))
      .takes(ComponentType::Edge)
      .parameter(choice("operation", "op", {"Non-manifold edges", "All edges"}, 1),
                 "0 parts edges of three faces and more, 1 all")
      .trial("", "e")
      .trial("-op 0", "e")
      .operation(split);
}

}  // namespace host::modelling
