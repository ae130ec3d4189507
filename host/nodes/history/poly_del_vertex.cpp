#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/delete_vertices.h"

namespace host::nodes {

void registerPolyDelVertex(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyDelVertex", typeCode("PDVX"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto done = ops::deleteVertices(context.mesh, context.vertices());
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
