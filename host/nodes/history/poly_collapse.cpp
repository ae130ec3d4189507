#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/collapse.h"

namespace host::nodes {

void registerPolyCollapse(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyCollapseEdge", typeCode("PCOE"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto done = ops::collapseEdges(context.mesh, context.edges());
        return done ? Result<void>() : failWith(done.error());
      });
  HistoryNodeBuilder(types, "polyCollapseF", typeCode("PCOF"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto done = ops::collapseFaces(context.mesh, context.faces());
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
