#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/merge_vertices.h"

namespace host::nodes {

namespace {

/// What the listed vertices became, each once.
std::vector<VertexId> followed(const std::vector<VertexId>& listed,
                               const std::vector<VertexId>& map) {
  std::vector<VertexId> left;
  for (const VertexId vertex : listed)
    if (map[static_cast<std::size_t>(vertex)] != kNone)
      left.push_back(map[static_cast<std::size_t>(vertex)]);
  return ops::sortedIds(left);
}

}  // namespace

void registerPolyMergeVert(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyMergeVert", typeCode("PMVT"), "polyModifierWorld")
      .parameter(keyable(atLeast(distance("distance", "d"), 0)))
      .parameter(boolean("alwaysMergeTwoVertices", "am"))
      .operation([](HistoryContext& context) -> Result<void> {
        ops::MergeVerticesOptions options;
        options.distance = context.real("distance");
        options.alwaysMergeTwo = context.boolean("alwaysMergeTwoVertices");
        options.space = context.space();
        const std::vector<VertexId> vertices = context.vertices();
        const auto merged = ops::mergeVertices(context.mesh, vertices, options);
        if (!merged) return failWith(merged.error());
        context.makes(scene::ComponentType::Vertex, followed(vertices, merged->maps.vertices));
        return {};
      });
}

}  // namespace host::nodes
