#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/plane.h"

namespace host::nodes {

void registerPolyPlane(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyPlane", typeCode("PMES"))
      .parameter(keyable(distance("width", "w", 1)))
      .parameter(keyable(distance("height", "h", 1)))
      .parameter(keyable(atLeast(integer("subdivisionsWidth", "sw", 10), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 10), 1)))
      .parameter(limited(integer("createUVs", "cuv", 1), 0, 2))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::PlaneOptions options;
        options.width = context.real("width");
        options.height = context.real("height");
        options.subdivisionsWidth = context.integer("subdivisionsWidth");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makePlane(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
