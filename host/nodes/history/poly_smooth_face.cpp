#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/smooth/smooth_mesh.h"

namespace host::nodes {

namespace {

Result<ops::SmoothOptions> smoothOptions(const HistoryContext& context) {
  constexpr int kLinear = 1;
  using Borders = ops::SmoothOptions::MapBorders;
  constexpr Borders kBorders[] = {Borders::Smooth, Borders::Keep, Borders::KeepAll};
  const auto borders = context.choice("keepMapBorders", 3);
  if (!borders) return failWith(borders.error());
  ops::SmoothOptions options;
  const bool isLinear = context.integer("method") == kLinear;
  options.divisions = context.integer(isLinear ? "subdivisionLevels" : "divisions");
  options.continuity = context.real("continuity");
  options.keepBorder = context.boolean("keepBorder");
  options.keepSelectionBorder = context.boolean("keepSelectionBorder");
  options.keepHardEdges = context.boolean("keepHardEdge");
  options.propagateHardness = context.boolean("propagateEdgeHardness");
  options.smoothUVs = context.boolean("smoothUVs");
  options.mapBorders = kBorders[*borders];
  return options;
}

}  // namespace

void registerPolySmoothFace(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polySmoothFace", typeCode("PSMF"))
      .parameter(choice("method", "mth", {"Exponential", "Linear"}))
      .parameter(choice("subdivisionType", "sdt", {"Catmull-Clark", "Unused", "OpenSubdiv"}))
      .parameter(keyable(limited(integer("divisions", "dv", 1), 0, 8)))
      .parameter(keyable(limited(integer("subdivisionLevels", "sl", 1), 0, 8)))
      .parameter(keyable(limited(real("continuity", "c", 1), 0, 1)))
      .parameter(boolean("smoothUVs", "suv", true))
      .parameter(boolean("keepBorder", "kb", true))
      .parameter(boolean("keepSelectionBorder", "ksb", true))
      .parameter(boolean("keepHardEdge", "khe"))
      .parameter(boolean("propagateEdgeHardness", "peh"))
      .parameter(choice("keepMapBorders", "kmb", {"None", "Internal", "All"}, 1))
      .parameter(boolean("keepTessellation", "kt", true))
      .parameter(integer("divisionsPerEdge", "dpe", 1))
      .parameter(real("pushStrength", "ps", 0.1))
      .parameter(real("roundness", "ro", 1))
      .parameter(integer("boundaryRule", "bnr"))
      .parameter(integer("osdVertBoundary", "ovb", 1))
      .parameter(integer("osdFvarBoundary", "ofb", 3))
      .parameter(boolean("osdFvarPropagateCorners", "ofc"))
      .parameter(boolean("osdSmoothTriangles", "ost"))
      .parameter(integer("osdCreaseMethod", "ocr"))
      .operation([](HistoryContext& context) -> Result<void> {
        const auto options = smoothOptions(context);
        if (!options) return failWith(options.error());
        auto made = ops::smoothMesh(context.mesh, context.faces(), *options);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Face, std::move(made->faces));
        return {};
      });
}

}  // namespace host::nodes
