#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/delete_edges.h"

namespace host::nodes {

void registerPolyDelEdge(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyDelEdge", typeCode("PDEG"))
      .parameter(boolean("cleanVertices", "cv"))
      .operation([](HistoryContext& context) -> Result<void> {
        const ops::DeleteEdgesOptions options{context.boolean("cleanVertices")};
        const auto done = ops::deleteEdges(context.mesh, context.edges(), options);
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
