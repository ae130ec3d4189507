#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/cylinder.h"

namespace host::nodes {

void registerPolyCylinder(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyCylinder", typeCode("PCYL"))
      .parameter(keyable(distance("radius", "r", 1)))
      .parameter(keyable(distance("height", "h", 2)))
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc", 1), 0)))
      .parameter(boolean("roundCap", "rcp"))
      .parameter(boolean("roundCapHeightCompensate", "rchc"))
      .parameter(limited(integer("createUVs", "cuv", 2), 0, 3))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::CylinderOptions options;
        options.radius = context.real("radius");
        options.height = context.real("height");
        options.subdivisionsAxis = context.integer("subdivisionsAxis");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.subdivisionsCaps = context.integer("subdivisionsCaps");
        options.roundCap = context.boolean("roundCap");
        options.roundCapHeightCompensate = context.boolean("roundCapHeightCompensate");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makeCylinder(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
