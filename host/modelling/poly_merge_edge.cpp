#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/merge_edges.h"

namespace host::modelling {

namespace {

Result<void> merge(HistoryContext& context) {
  const auto mode = context.choice("mergeMode", 3);
  if (!mode) return failWith(mode.error());
  const EdgeId first = context.integer("firstEdge"), second = context.integer("secondEdge");
  if (first < 0 || second < 0) return fail("say which edges: -firstEdge and -secondEdge");
  auto maps = ops::mergeEdges(
      context.mesh, first, second,
      {.place = static_cast<ops::MergePlace>(*mode), .mergesUvs = context.boolean("mergeTexture")});
  if (!maps) return failWith(maps.error());
  const EdgeId merged = maps->edges[at(std::min(first, second))];
  if (merged != kNone) context.makes(std::vector{merged});
  return {};
}

}  // namespace

void polyMergeEdge(Declarations& add) {
  add("polyMergeEdge", "Makes one edge of two border edges.")
      .node("polyMergeEdge", typeCode("PMRE"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(choice("mergeMode", "mm", {"First", "Halfway", "Last"}, 1),
                 "where the edge is put: 0 the first, 1 between, 2 the last")
      .parameter(integer("firstEdge", "fe", -1), "the number of one border edge")
      .parameter(integer("secondEdge", "se", -1), "the number of the other")
      .parameter(boolean("mergeTexture", "mt"), "sews the map there too")
      .trial("-fe 0 -se 1", "object")
      .trial("-fe 0 -se 1 -mm 0 -mt 1", "object")
      .trial("-fe 1 -se 2 -mm 2", "object")
      .operation(merge);
}

}  // namespace host::modelling
