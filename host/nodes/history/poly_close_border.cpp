#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/append_polygon.h"

namespace host::nodes {

void registerPolyCloseBorder(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyCloseBorder", typeCode("PCBD"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto edges = context.edges();
        if (edges.empty()) return {};
        auto faces = ops::closeBorders(context.mesh, edges);
        if (!faces) return failWith(faces.error());
        context.makes(scene::ComponentType::Face, *std::move(faces));
        return {};
      });
}

}  // namespace host::nodes
