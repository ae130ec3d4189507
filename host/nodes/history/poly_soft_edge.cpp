#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modifiers.h"
#include "host/ops/topology/soft_edges.h"

namespace host::nodes {

void registerPolySoftEdge(dg::TypeRegistry& types) {
  constexpr double kThirtyDegrees = 0.52359877559829882;
  HistoryNodeBuilder(types, "polySoftEdge", typeCode("PSOE"), "polyModifierWorld")
      .parameter(keyable(angle("angle", "a", kThirtyDegrees)))
      .operation([](HistoryContext& context) {
        return ops::softenEdges(context.mesh, context.edges(), context.real("angle"));
      });
}

}  // namespace host::nodes
