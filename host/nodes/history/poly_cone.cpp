#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/cone.h"

namespace host::nodes {

void registerPolyCone(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyCone", typeCode("PCON"))
      .parameter(keyable(distance("radius", "r", 1)))
      .parameter(keyable(distance("height", "h", 2)))
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsCap", "sc", 0), 0)))
      .parameter(boolean("roundCap", "rcp"))
      .parameter(limited(integer("createUVs", "cuv", 2), 0, 3))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::ConeOptions options;
        options.radius = context.real("radius");
        options.height = context.real("height");
        options.subdivisionsAxis = context.integer("subdivisionsAxis");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.subdivisionsCap = context.integer("subdivisionsCap");
        options.roundCap = context.boolean("roundCap");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makeCone(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
