#include <algorithm>
#include <numbers>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/split_ring.h"

namespace host::nodes {

namespace {

Result<void> split(HistoryContext& context) {
  using Spacing = ops::SplitRingOptions::Spacing;
  constexpr Spacing kSpacings[] = {Spacing::Absolute, Spacing::Relative, Spacing::Even};
  const auto type = context.choice("splitType", 3);
  if (!type) return failWith(type.error());
  const std::vector<EdgeId> edges = context.edges();
  ops::SplitRingOptions options;
  options.spacing = kSpacings[*type];
  options.weight = context.real("weight");
  options.divisions = context.integer("divisions");
  options.isReversed = context.integer("direction") == 0;
  options.smoothingAngle = context.real("smoothingAngle");
  options.fixQuads = context.boolean("fixQuads");
  // The root may have gone upstream; the lowest edge then stands for it.
  const EdgeId root = context.integer("rootEdge");
  options.rootEdge = std::binary_search(edges.begin(), edges.end(), root) ? root : kNone;
  auto made = ops::splitRing(context.mesh, edges, options);
  if (!made) return failWith(made.error());
  context.makes(scene::ComponentType::Edge, std::move(made->edges));
  return {};
}

}  // namespace

void registerPolySplitRing(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polySplitRing", typeCode("PSPR"), "polyModifierWorld")
      .parameter(limited(choice("splitType", "stp", {"Absolute", "Relative", "Multi"}, 1), 0, 2))
      .parameter(keyable(real("weight", "wt", 0.5)))
      .parameter(keyable(atLeast(integer("divisions", "div", 1), 1)))
      .parameter(limited(integer("direction", "dr", 1), 0, 1))
      .parameter(integer("rootEdge", "re", -1))
      .parameter(boolean("useEqualMultiplier", "uem", true))
      .parameter(angle("smoothingAngle", "sma", std::numbers::pi / 6))
      .parameter(boolean("fixQuads", "fq"))
      .parameter(boolean("insertWithEdgeFlow", "ief"))
      .parameter(keyable(real("adjustEdgeFlow", "aef", 1)))
      .parameter(array(
          compound("profileCurve", "p",
                   {single("profileCurve_Position", "pp"), single("profileCurve_FloatValue", "pfv"),
                    choice("profileCurve_Interp", "pi", {"None", "Linear", "Smooth", "Spline"})})))
      .operation(split);
}

}  // namespace host::nodes
