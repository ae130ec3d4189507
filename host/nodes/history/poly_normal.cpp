#include <algorithm>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/normals.h"

namespace host::nodes {

void registerPolyNormal(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyNormal", typeCode("PNRM"))
      .parameter(choice(
          "normalMode", "nm",
          {"Reverse", "Unlock", "Conform", "Reverse and extract", "Reverse and propagate"}))
      .parameter(boolean("userNormalMode", "unm", true))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto mode = static_cast<ops::NormalMode>(std::clamp(context.integer("normalMode"), 0, 4));
        const auto done = ops::changeNormals(context.mesh, context.faces(), mode);
        return done ? Result<void>() : failWith(done.error());
      });
}

}  // namespace host::nodes
