#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/cone.h"

namespace host::nodes {

void registerPolyPyramid(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyPyramid", typeCode("PPYR"))
      .parameter(keyable(distance("sideLength", "w", 1)))
      .parameter(dg::makeEnum("numberOfSides", "ns", {{"Three", 3}, {"Four", 4}, {"Five", 5}}, 4))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsCaps", "sc", 0), 0)))
      .parameter(limited(integer("createUVs", "cuv", 2), 0, 3))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::PyramidOptions options;
        options.sideLength = context.real("sideLength");
        options.sides = context.integer("numberOfSides");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.subdivisionsCap = context.integer("subdivisionsCaps");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makePyramid(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
