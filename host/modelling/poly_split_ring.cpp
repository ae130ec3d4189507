#include <algorithm>
#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/modelling/declare/edge_flow.h"
#include "host/ops/topology/split_ring.h"

namespace host::modelling {

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
  // A fraction beyond the ends of the edges stops there.
  if (options.spacing == Spacing::Relative) options.weight = std::clamp(options.weight, 0.0, 1.0);
  options.divisions = context.integer("divisions");
  options.isReversed = !context.boolean("direction");
  options.smoothingAngle = context.real("smoothingAngle");
  options.fixQuads = context.boolean("fixQuads");
  // The root may have gone upstream; the lowest edge then stands for it.
  const EdgeId root = context.integer("rootEdge");
  options.rootEdge = std::binary_search(edges.begin(), edges.end(), root) ? root : kNone;
  auto made = ops::splitRing(context.mesh, edges, options);
  if (!made) return failWith(made.error());
  HOST_TRY(followEdgeFlow(context, made->edges));
  context.makes(std::move(made->edges));
  return {};
}

/// The first edge named is the one that the weight is measured on.
Result<void> setRoot(Context& context, const ParsedArgs& args, Node& node, const MeshItem&,
                     const std::vector<Index>& edges) {
  if (args.has("rootEdge") || edges.empty()) return {};
  return context.document.graph().set(node.plug("rootEdge"), std::int64_t{edges.front()});
}

void addProfile(Declaration& declaration) {
  declaration
      .parameter(boolean("enableProfileCurve", "epc", true), "the loops follow a profile curve")
      .recordedOnly()
      .parameter(
          array(compound(
              "profileCurve", "p",
              {single("profileCurve_Position", "pp"), single("profileCurve_FloatValue", "pfv"),
               choice("profileCurve_Interp", "pi", {"None", "Linear", "Smooth", "Spline"})})),
          "the profile curve")
      .recordedOnly()
      .parameter(single("profileCurveInputOffset", "pio"), "of the profile curve")
      .recordedOnly()
      .parameter(single("profileCurveInputScale", "pis", 1), "of the profile curve")
      .recordedOnly()
      .parameter(boolean("useFaceNormalsAtEnds", "fne", true), "of the profile curve")
      .recordedOnly()
      .parameter(notStored(boolean("absoluteWeight", "ab")), "of older files")
      .noFlag()
      .recordedOnly();
}

}  // namespace

void polySplitRing(Declarations& add) {
  Declaration& declaration =
      add("polySplitRing", "Cuts a ring of edges by new loops.")
          .node("polySplitRing", typeCode("PSPR"), "polyModifierWorld")
          .takes(ComponentType::Edge)
          .leaves(Leaves::Made)
          .parameter(
              limited(choice("splitType", "stp", {"Absolute", "Relative", "Multi"}, 1), 0, 2),
              "0 at a length, 1 at a fraction of each edge, 2 evenly")
          .parameter(keyable(real("weight", "wt", 0.5)), "the fraction, or the length in cm")
          .parameter(keyable(atLeast(integer("divisions", "div", 2), 1)),
                     "how many loops, with -splitType 2")
          .commandSets(1)
          .parameter(boolean("direction", "dr", true), "off measures from the edges' other ends")
          .parameter(integer("rootEdge", "re", -1), "the edge that says which end counts")
          .parameter(boolean("useEqualMultiplier", "uem", true), "of -splitType 0")
          .recordedOnly()
          .parameter(angle("smoothingAngle", "sma", std::numbers::pi),
                     "new edges are hard beyond it")
          .commandSets(std::numbers::pi / 6)
          .parameter(boolean("fixQuads", "fq"), "triangles and quads at the ends are cut to quads")
          .parameter(boolean("insertWithEdgeFlow", "ief"), "the loops follow the curvature around")
          .parameter(keyable(real("adjustEdgeFlow", "aef", 1)),
                     "how far, with -insertWithEdgeFlow");
  addProfile(declaration);
  declaration.parameter(boolean("worldSpace", "ws"), "-weight as a length is the object's own")
      .recordedOnly()
      .afterFlags(setRoot)
      .trial("-wt 0.3", "e")
      .trial("-stp 2 -div 3", "e")
      .trial("-stp 0 -wt 0.2 -dr 0 -fq 1 -sma 0", "e")
      .trial("-ief 1", "e")
      .operation(split);
}

}  // namespace host::modelling
