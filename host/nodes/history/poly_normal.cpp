#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/reverse_faces.h"

namespace host::nodes {

void registerPolyNormal(dg::TypeRegistry& types) {
  enum Mode { kReverse = 0, kConform = 2 };
  HistoryNodeBuilder(types, "polyNormal", typeCode("PNRM"))
      .parameter(choice("normalMode", "nm",
                        {"Reverse", "Reverse and cut", "Conform", "Reverse and extract"}))
      .parameter(boolean("userNormalMode", "unm", true))
      .operation([](HistoryContext& context) -> Result<void> {
        if (context.integer("normalMode") != kConform)
          return ops::reverseFaces(context.mesh, context.faces());
        const auto turned = ops::conformFaces(context.mesh, context.faces());
        return turned ? Result<void>() : failWith(turned.error());
      });
}

}  // namespace host::nodes
