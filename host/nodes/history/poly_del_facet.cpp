#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/delete_faces.h"

namespace host::nodes {

void registerPolyDelFacet(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyDelFacet", typeCode("PDFC"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto done = ops::deleteFaces(context.mesh, context.faces());
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
