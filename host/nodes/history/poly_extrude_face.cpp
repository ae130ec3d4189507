#include "host/nodes/history/extrude_attributes.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/extrude_faces.h"

namespace host::nodes {

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
  static_cast<ops::ExtrudePlacement&>(options) = extrudePlacement(context);
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
  context.makes(scene::ComponentType::Face, cached->plan.result().caps);
  return {};
}

}  // namespace

void registerPolyExtrudeFace(dg::TypeRegistry& types) {
  HistoryNodeBuilder builder(types, "polyExtrudeFace", typeCode("PEXF"), "polyModifierWorld");
  builder.parameter(boolean("keepFacesTogether", "kft", true));
  addExtrudeAttributes(builder);
  builder.operation(extrude);
}

}  // namespace host::nodes
