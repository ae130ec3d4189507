#include <numbers>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/quadrangulate.h"

namespace host::nodes {

namespace {

/// What the listed triangles became, ascending.
std::vector<FaceId> followed(const std::vector<FaceId>& listed, const std::vector<FaceId>& map) {
  std::vector<FaceId> left;
  for (const FaceId face : listed)
    if (const FaceId now = map[static_cast<std::size_t>(face)]; now != kNone) left.push_back(now);
  return ops::sortedIds(left);
}

}  // namespace

void registerPolyQuad(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyQuad", typeCode("PQUA"), "polyModifierWorld")
      .parameter(keyable(angle("angle", "a", std::numbers::pi / 6)))
      .parameter(boolean("keepGroupBorder", "kgb", true))
      .parameter(boolean("keepTextureBorders", "ktb", true))
      .parameter(boolean("keepHardEdges", "khe", true))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::QuadrangulateOptions options;
        options.angle = context.real("angle");
        options.keepGroupBorder = context.boolean("keepGroupBorder");
        options.keepTextureBorders = context.boolean("keepTextureBorders");
        options.keepHardEdges = context.boolean("keepHardEdges");
        options.space = context.space();
        const std::vector<FaceId> faces = context.faces();
        const auto made = ops::quadrangulate(context.mesh, faces, options);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, followed(faces, made->maps.faces));
        return {};
      });
}

}  // namespace host::nodes
