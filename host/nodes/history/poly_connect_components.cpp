#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/connect_components.h"

namespace host::nodes {

void registerPolyConnectComponents(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyConnectComponents", typeCode("PCCP"))
      .parameter(boolean("insertWithEdgeFlow", "ief"))
      .parameter(keyable(real("adjustEdgeFlow", "aef", 1)))
      .operation([](HistoryContext& context) -> Result<void> {
        auto made = ops::connectComponents(context.mesh, context.vertices(), context.edges());
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Edge, std::move(made->edges));
        return {};
      });
}

}  // namespace host::nodes
