#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/bridge_edges.h"

namespace host::modelling {

namespace {

/// The vertex an attribute names; none for a negative number or one that is not there.
VertexId vertexAt(const HistoryContext& context, const char* attribute) {
  const VertexId vertex = context.integer(attribute);
  return vertex >= 0 && vertex < context.mesh.vertexCount() ? vertex : kNone;
}

Result<void> bridge(HistoryContext& context) {
  const auto edges = context.edges();
  if (edges.empty()) return {};
  ops::BridgeEdgesOptions options;
  options.divisions = context.integer("divisions");
  options.twist = context.real("twist");
  options.taper = context.real("taper");
  options.shift = context.integer("bridgeOffset");
  options.smoothingAngle = context.real("smoothingAngle");
  options.start = vertexAt(context, "startVert1");
  options.target = vertexAt(context, "startVert2");
  if (options.start == kNone || options.target == kNone) options.start = options.target = kNone;
  auto made = ops::bridgeEdges(context.mesh, edges, options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->faces));
  return {};
}

}  // namespace

void polyBridgeEdge(Declarations& add) {
  add("polyBridgeEdge", "Joins two runs of border edges by faces.")
      .node("polyBridgeEdge", typeCode("PBRE"), "polyModifierWorld")
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(keyable(atLeast(integer("divisions", "dv", 1), 0)), "loops of edges on the way")
      .commandSets(5)
      .parameter(keyable(angle("twist", "twt")), "turns the loops on the way")
      .parameter(keyable(real("taper", "tp", 1)), "scales the loops in the middle")
      .parameter(integer("bridgeOffset", "bo"), "shifts which vertices are joined")
      .parameter(choice("curveType", "ctp", {"Linear", "Blend", "Curve"}), "the way's shape")
      .withoutEffect()
      .parameter(angle("smoothingAngle", "sma", std::numbers::pi / 6),
                 "new edges are hard beyond it")
      .parameter(integer("startVert1", "sv1", -1), "a vertex of one run to be joined")
      .parameter(integer("startVert2", "sv2", -1), "with this one of the other")
      .parameter(integer("endVert1", "ev1", -1), "the other end of the first run")
      .recordedOnly()
      .parameter(integer("endVert2", "ev2", -1), "the other end of the second run")
      .recordedOnly()
      .parameter(choice("sourceDirection", "sd", {"Along normal", "Opposite normal"}),
                 "where a curved way starts to")
      .recordedOnly()
      .parameter(choice("targetDirection", "td", {"Along normal", "Opposite normal"}),
                 "where a curved way arrives from")
      .recordedOnly()
      .parameter(choice("direction", "d", {"Off", "On"}), "where a curved way goes")
      .recordedOnly()
      .parameter(boolean("reverse", "rev"), "joins the second run the other way round")
      .withoutEffect()
      .parameter(notStored(dg::makeTyped("inputProfile", "ipc", "nurbsCurve")), "curve to follow")
      .recordedOnly()
      .parameter(array(compound(
                     "taperCurve", "c",
                     {single("taperCurve_Position", "cp"), single("taperCurve_FloatValue", "cfv"),
                      choice("taperCurve_Interp", "ci", {"None", "Linear", "Smooth", "Spline"})})),
                 "scale along the way")
      .recordedOnly()
      .parameter(boolean("worldSpace", "ws"), "bridges are measured in the object's space")
      .recordedOnly()
      .trial("-dv 1", "border")
      .trial("-dv 3 -twist 30 -taper 0.5", "border")
      .operation(bridge);
}

}  // namespace host::modelling
