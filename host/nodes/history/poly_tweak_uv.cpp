#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modifiers.h"

namespace host::nodes {

void registerPolyTweakUv(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyTweakUV", typeCode("PTUV"))
      .parameter(
          array(numbers("uvTweak", "uvtk", "float2", {real("tweakU", "tu"), real("tweakV", "tv")})))
      .parameter(text("uvSetName", "uvs"))
      .operation([](HistoryContext& context) -> Result<void> {
        const std::string name = context.text("uvSetName");
        const int set = name.empty() ? context.mesh.currentUvSet() : context.mesh.findUvSet(name);
        if (set < 0) return fail("the mesh has no UV set '{}'", name);
        std::vector<Index> indices;
        std::vector<double> offsets;
        context.packed("uvTweak", indices, offsets);
        if (indices.empty()) return {};
        std::vector<math::Vec2f>& uvs = context.mesh.editUvSet(set).points;
        for (std::size_t i = 0; i < indices.size(); ++i) {
          if (static_cast<std::size_t>(indices[i]) >= uvs.size()) continue;
          math::Vec2f& uv = uvs[static_cast<std::size_t>(indices[i])];
          if (offsets[i * 2] != 0) uv.u = static_cast<float>(uv.u + offsets[i * 2]);
          if (offsets[i * 2 + 1] != 0) uv.v = static_cast<float>(uv.v + offsets[i * 2 + 1]);
        }
        return {};
      });
}

}  // namespace host::nodes
