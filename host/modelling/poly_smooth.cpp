#include "host/modelling/declare/declaration.h"
#include "host/ops/smooth/smooth_mesh.h"

namespace host::modelling {

namespace {

Result<ops::SmoothOptions> optionsOf(const HistoryContext& context) {
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

Result<void> smooth(HistoryContext& context) {
  const auto options = optionsOf(context);
  if (!options) return failWith(options.error());
  auto made = ops::smoothMesh(context.mesh, context.faces(), *options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->faces));
  return {};
}

/// What other ways of smoothing read. Menus pass all of it, whichever way is on.
void addOtherWays(Declaration& declaration) {
  declaration.parameter(boolean("keepTessellation", "kt", true), "of linear smoothing")
      .recordedOnly()
      .parameter(integer("divisionsPerEdge", "dpe", 1), "of linear smoothing")
      .recordedOnly()
      .parameter(integer("degree", "deg", 3), "of linear smoothing")
      .noFlag()
      .recordedOnly()
      .parameter(single("pushStrength", "ps"), "of linear smoothing")
      .commandSets(0.1)
      .recordedOnly()
      .parameter(single("roundness", "ro"), "of linear smoothing")
      .commandSets(1)
      .recordedOnly()
      .parameter(choice("boundaryRule", "bnr", {"Legacy", "Crease all", "Crease edges"}, 1),
                 "of borders that may move")
      .recordedOnly()
      .parameter(choice("subdivisionType", "sdt", {"Catmull-Clark", "Unused", "OpenSubdiv"}),
                 "who computes it; all are Catmull-Clark")
      .recordedOnly()
      .parameter(integer("osdVertBoundary", "ovb", 1), "borders, for -subdivisionType 2")
      .recordedOnly()
      .parameter(integer("osdFvarBoundary", "ofb", 3), "UV borders, for -subdivisionType 2")
      .recordedOnly()
      .parameter(boolean("osdFvarPropagateCorners", "ofc"), "UV corners, for -subdivisionType 2")
      .recordedOnly()
      .parameter(boolean("osdSmoothTriangles", "ost"), "triangles, for -subdivisionType 2")
      .recordedOnly()
      .parameter(integer("osdCreaseMethod", "ocr"), "creases, for -subdivisionType 2")
      .recordedOnly()
      .parameter(boolean("maya65Above", "ma"), "of files of other versions")
      .noFlag()
      .recordedOnly()
      .parameter(boolean("maya2008Above", "m08"), "of files of other versions")
      .noFlag()
      .recordedOnly();
}

}  // namespace

void polySmooth(Declarations& add) {
  Declaration& declaration =
      add("polySmooth", "Divides faces and rounds them, by the rules of Catmull and Clark.")
          .node("polySmoothFace", typeCode("PSMF"))
          .takes(ComponentType::Face)
          .leaves(Leaves::Made)
          .parameter(choice("method", "mth", {"Exponential", "Linear"}),
                     "0: -divisions says how often; 1: -subdivisionLevels")
          .parameter(keyable(limited(integer("divisions", "dv", 1), 0, 8)),
                     "how often each face is divided in four")
          .parameter(keyable(limited(integer("subdivisionLevels", "sl", 1), 0, 8)),
                     "the same, with -method 1")
          .parameter(keyable(limited(real("continuity", "c", 1), 0, 1)),
                     "0 divides only, 1 rounds fully")
          .parameter(boolean("smoothUVs", "suv"), "UVs are rounded with the points")
          .commandSets(1)
          .parameter(boolean("keepBorder", "kb", true), "borders of the mesh stay in place")
          .parameter(boolean("keepSelectionBorder", "ksb", true),
                     "borders of what is named stay in place")
          .parameter(boolean("keepHardEdge", "khe"), "hard edges stay sharp")
          .parameter(boolean("propagateEdgeHardness", "peh"), "pieces of hard edges are hard")
          .parameter(choice("keepMapBorders", "kmb", {"None", "Internal", "All"}, 1),
                     "UV borders: 0 round, 1 stay in place, 2 all UVs stay")
          .trial("-dv 1", "f")
          .trial("-dv 2 -kb 0 -khe 1 -kmb 0", "f")
          .trial("-mth 1 -sl 2 -c 0.5 -ksb 0 -peh 1", "f")
          .operation(smooth);
  addOtherWays(declaration);
}

}  // namespace host::modelling
