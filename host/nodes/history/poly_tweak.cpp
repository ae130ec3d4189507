#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modifiers.h"

namespace host::nodes {

void registerPolyTweak(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyTweak", typeCode("PTWK"))
      .parameter(array(
          numbers("tweak", "tk", "float3",
                  {distance("tweakX", "tx"), distance("tweakY", "ty"), distance("tweakZ", "tz")})))
      .operation([](HistoryContext& context) -> Result<void> {
        std::vector<Index> indices;
        std::vector<double> offsets;
        context.packed("tweak", indices, offsets);
        if (indices.empty()) return {};
        const std::span<math::Vec3f> points = context.mesh.editPoints();
        for (std::size_t i = 0; i < indices.size(); ++i) {
          if (at(indices[i]) >= points.size()) continue;
          math::Vec3f& point = points[at(indices[i])];
          // An offset of zero must not even turn a -0 into a 0.
          if (offsets[i * 3] != 0) point.x = static_cast<float>(point.x + offsets[i * 3]);
          if (offsets[i * 3 + 1] != 0) point.y = static_cast<float>(point.y + offsets[i * 3 + 1]);
          if (offsets[i * 3 + 2] != 0) point.z = static_cast<float>(point.z + offsets[i * 3 + 2]);
        }
        return {};
      });
}

}  // namespace host::nodes
