#include "host/nodes/history/extrude_attributes.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/extrude_faces.h"

namespace host::nodes {

void registerPolyExtrudeFace(dg::TypeRegistry& types) {
  HistoryNodeBuilder builder(types, "polyExtrudeFace", typeCode("PEXF"), "polyModifierWorld");
  builder.parameter(boolean("keepFacesTogether", "kft", true));
  addExtrudeAttributes(builder);
  builder.operation([](HistoryContext& context) -> Result<void> {
    ops::ExtrudeFacesOptions options;
    static_cast<ops::ExtrudePlacement&>(options) = extrudePlacement(context);
    options.keepFacesTogether = context.boolean("keepFacesTogether");
    auto made = ops::extrudeFaces(context.mesh, context.faces(), options);
    if (!made) return failWith(made.error());
    context.makes(scene::ComponentType::Face, std::move(made->caps));
    return {};
  });
}

}  // namespace host::nodes
