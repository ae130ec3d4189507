#include <vector>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/append_polygon.h"

namespace host::nodes {

void registerPolyCreateFace(dg::TypeRegistry& types) {
  PrimitiveNodeBuilder(types, "polyCreateFace", typeCode("PCRF"), "polyCreator")
      .parameter(array(numbers(
          "vertices", "v", "float3",
          {single("verticesX", "vx"), single("verticesY", "vy"), single("verticesZ", "vz")})))
      .parameter(array(integer("loop", "l")))
      .parameter(choice("texture", "tx", {"None", "Normalize", "Unitize"}))
      .operation([](HistoryContext& context) -> Result<void> {
        std::vector<Index> indices;
        std::vector<double> values;
        context.packed("vertices", indices, values);
        std::vector<math::Vec3> points;
        for (std::size_t i = 0; i + 2 < values.size(); i += 3)
          points.emplace_back(values[i], values[i + 1], values[i + 2]);
        auto made = ops::createPolygon(points);
        if (!made) return failWith(made.error());
        context.mesh = *std::move(made);
        return {};
      });
}

}  // namespace host::nodes
