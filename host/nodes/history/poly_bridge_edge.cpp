#include <numbers>

#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/bridge_edges.h"

namespace host::nodes {

namespace {

/// The vertex an attribute names; none for a negative number or one that is not there.
VertexId vertexAt(const HistoryContext& context, const char* attribute) {
  const VertexId vertex = context.integer(attribute);
  return vertex >= 0 && vertex < context.mesh.vertexCount() ? vertex : kNone;
}

}  // namespace

void registerPolyBridgeEdge(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polyBridgeEdge", typeCode("PBRE"), "polyModifierWorld")
      .parameter(keyable(atLeast(integer("divisions", "dv", 5), 0)))
      .parameter(keyable(angle("twist", "twt")))
      .parameter(keyable(real("taper", "tp", 1)))
      .parameter(integer("bridgeOffset", "bo"))
      .parameter(choice("curveType", "ctp", {"Linear", "Blend", "Curve"}))
      .parameter(angle("smoothingAngle", "sma", std::numbers::pi / 6))
      .parameter(integer("startVert1", "sv1", -1))
      .parameter(integer("startVert2", "sv2", -1))
      .parameter(integer("endVert1", "ev1", -1))
      .parameter(integer("endVert2", "ev2", -1))
      .parameter(integer("sourceDirection", "sd"))
      .parameter(integer("targetDirection", "td"))
      .parameter(boolean("direction", "d"))
      .parameter(array(
          compound("taperCurve", "c",
                   {single("taperCurve_Position", "cp"), single("taperCurve_FloatValue", "cfv"),
                    choice("taperCurve_Interp", "ci", {"None", "Linear", "Smooth", "Spline"})})))
      .operation([](HistoryContext& context) -> Result<void> {
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
        if (options.start == kNone || options.target == kNone)
          options.start = options.target = kNone;
        auto made = ops::bridgeEdges(context.mesh, edges, options);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, std::move(made->faces));
        return {};
      });
}

}  // namespace host::nodes
