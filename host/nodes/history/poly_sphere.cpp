#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/sphere.h"

namespace host::nodes {

void registerPolySphere(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polySphere", typeCode("PSPH"))
      .parameter(keyable(distance("radius", "r", 1)))
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 20), 3)))
      .parameter(limited(integer("createUVs", "cuv", 2), 0, 2))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::SphereOptions options;
        options.radius = context.real("radius");
        options.subdivisionsAxis = context.integer("subdivisionsAxis");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makeSphere(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
