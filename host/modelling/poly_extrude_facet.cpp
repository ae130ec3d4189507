#include "host/modelling/declare/placement.h"
#include "host/ops/topology/extrude_faces.h"

namespace host::modelling {

namespace {

/// The topology of the last evaluation. While a drag changes nothing but the placement, only points
/// are computed.
struct CachedExtrude {
  scene::MeshDataPtr input;
  std::shared_ptr<const scene::ComponentListData> faces;
  ops::ExtrudePlan plan;
};

Result<void> extrude(HistoryContext& context) {
  ops::ExtrudeFacesOptions options;
  static_cast<ops::ExtrudePlacement&>(options) = extrusionOf(context);
  options.keepFacesTogether = context.boolean("keepFacesTogether");
  const auto list = context.componentList();
  auto cached = std::static_pointer_cast<const CachedExtrude>(context.plan);
  if (!cached || cached->input != context.input || cached->faces != list ||
      !cached->plan.hasTopologyOf(options)) {
    context.plan.reset();
    auto plan = ops::ExtrudePlan::make(context.mesh, context.faces(), options);
    if (!plan) return failWith(plan.error());
    cached =
        std::make_shared<const CachedExtrude>(CachedExtrude{context.input, list, *std::move(plan)});
    context.plan = cached;
  }
  auto placed = cached->plan.place(options);
  if (!placed) return failWith(placed.error());
  context.mesh = *std::move(placed);
  context.makes(cached->plan.result().caps);
  return {};
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& faces) {
  return setPlacementFrame(context, args, node, item, faces, ComponentType::Face);
}

}  // namespace

void polyExtrudeFacet(Declarations& add) {
  Declaration& declaration =
      add("polyExtrudeFacet", "Moves faces; new faces join their rim to what they came from.")
          .node("polyExtrudeFace", typeCode("PEXF"), "polyModifierWorld")
          .takes(ComponentType::Face)
          .leaves(Leaves::Made)
          .parameter(boolean("keepFacesTogether", "kft", true),
                     "faces that share an edge move as one region");
  addExtrusion(declaration);
  addFacePlacement(declaration);
  declaration.parameter(boolean("reverseAllFaces", "raf", true), "of files of other versions")
      .noFlag()
      .recordedOnly()
      .afterFlags(setFrame)
      .trial("-ltz 0.3", "f")
      .trial("-kft 0 -d 2 -off 0.05 -taper 0.5 -twist 20 -ws 1", "f")
      .trial("-tk 0.1 -sma 0 -lry 10 -lsx 0.7 -tx 0.1 -rx 20 -sy 1.5 -pvx 1 -d 3", "f")
      .operation(extrude);
}

}  // namespace host::modelling
