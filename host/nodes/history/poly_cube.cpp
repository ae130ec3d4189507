#include "host/nodes/history/history_node.h"
#include "host/nodes/history/primitives.h"
#include "host/ops/primitives/cube.h"

namespace host::nodes {

void registerPolyCube(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyCube", typeCode("PCUB"))
      .parameter(keyable(distance("width", "w", 1)))
      .parameter(keyable(distance("height", "h", 1)))
      .parameter(keyable(distance("depth", "d", 1)))
      .parameter(keyable(atLeast(integer("subdivisionsWidth", "sw", 1), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)))
      .parameter(keyable(atLeast(integer("subdivisionsDepth", "sd", 1), 1)))
      .parameter(limited(real("heightBaseline", "hbl"), -1, 1))
      .parameter(limited(integer("createUVs", "cuv", 1), 0, 4))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::CubeOptions options;
        options.width = context.real("width");
        options.height = context.real("height");
        options.depth = context.real("depth");
        options.subdivisionsWidth = context.integer("subdivisionsWidth");
        options.subdivisionsHeight = context.integer("subdivisionsHeight");
        options.subdivisionsDepth = context.integer("subdivisionsDepth");
        options.heightBaseline = context.real("heightBaseline");
        options.axis = context.vec3("axis");
        options.createUVs = context.integer("createUVs");
        auto made = ops::makeCube(options);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
