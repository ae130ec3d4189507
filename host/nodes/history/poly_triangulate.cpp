#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/triangulate_faces.h"

namespace host::nodes {

void registerPolyTriangulate(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyTriangulate", typeCode("PTRI"))
      .operation([](HistoryContext& context) -> Result<void> {
        auto made = ops::triangulateFaces(context.mesh, context.faces());
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, std::move(made->triangles));
        return {};
      });
}

}  // namespace host::nodes
