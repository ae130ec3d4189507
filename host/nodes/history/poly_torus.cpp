#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/torus.h"

namespace host::nodes {

void registerPolyTorus(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyTorus", typeCode("PTOR"))
      .parameter(keyable(distance("radius", "r", 1)))
      .parameter(keyable(distance("sectionRadius", "sr", 0.5)))
      .parameter(keyable(angle("twist", "tw")))
      .parameter(keyable(atLeast(integer("subdivisionsAxis", "sa", 20), 3)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 20), 3)))
      .parameter(limited(integer("createUVs", "cuv", 1), 0, 1))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::TorusOptions options;
        options.radius = context.real("radius");
        options.sectionRadius = context.real("sectionRadius");
        options.twist = context.real("twist");
        options.subdivisionsAxis = context.integer("subdivisionsAxis");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makeTorus(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
