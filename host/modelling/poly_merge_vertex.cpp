#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/merge_vertices.h"

namespace host::modelling {

namespace {

/// What the listed vertices became, each once.
std::vector<VertexId> followed(const std::vector<VertexId>& listed,
                               const std::vector<VertexId>& map) {
  std::vector<VertexId> left;
  for (const VertexId vertex : listed)
    if (map[at(vertex)] != kNone) left.push_back(map[at(vertex)]);
  return ops::sortedIds(left);
}

Result<void> merge(HistoryContext& context) {
  ops::MergeVerticesOptions options;
  options.distance = context.real("distance");
  options.alwaysMergeTwo = context.boolean("alwaysMergeTwoVertices");
  options.space = context.space();
  const std::vector<VertexId> vertices = context.vertices();
  const auto merged = ops::mergeVertices(context.mesh, vertices, options);
  if (!merged) return failWith(merged.error());
  context.makes(followed(vertices, merged->maps.vertices));
  return {};
}

}  // namespace

void polyMergeVertex(Declarations& add) {
  add("polyMergeVertex", "Makes one vertex of those that lie within a distance.")
      .node("polyMergeVert", typeCode("PMVT"), "polyModifierWorld")
      .takes(ComponentType::Vertex)
      .leaves(Leaves::Made)
      .parameter(keyable(atLeast(distance("distance", "d", 0.01), 0)), "no farther than this")
      .commandSets(0)
      .parameter(boolean("alwaysMergeTwoVertices", "am"), "two vertices merge however far apart")
      .parameter(boolean("texture", "tx", true), "UVs of merged vertices merge where they agree")
      .recordedOnly()
      .parameter(dg::makeTyped("mergeToComponents", "mtc", "componentList"), "what to merge to")
      .recordedOnly()
      .trial("-d 0.5", "vtx")
      .trial("-d 0.6 -ws 1", "vtx")
      .trial("-d 0.0001 -am 1", "vtx")
      .operation(merge);
}

}  // namespace host::modelling
