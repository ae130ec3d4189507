#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/normals.h"

namespace host::nodes {

void registerPolyNormal(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyNormal", typeCode("PNRM"))
      .parameter(
          choice("normalMode", "nm",
                 {"Reverse", "Unlock", "Conform", "Reverse and extract", "Reverse and propagate"}))
      .parameter(boolean("userNormalMode", "unm", true))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto mode = context.choice("normalMode", 5);
        if (!mode) return failWith(mode.error());
        const auto done =
            ops::changeNormals(context.mesh, context.faces(), static_cast<ops::NormalMode>(*mode));
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
