#include "host/nodes/history/extrude_attributes.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/chip_off.h"

namespace host::nodes {

void registerPolyChipOff(dg::TypeRegistry& types) {
  HistoryNodeBuilder builder(types, "polyChipOff", typeCode("PCHO"), "polyModifierWorld");
  builder.parameter(boolean("keepFacesTogether", "kft", true))
      .parameter(boolean("duplicate", "dup", true));
  addPlacementAttributes(builder);
  builder.operation([](HistoryContext& context) -> Result<void> {
    ops::ChipOffOptions options;
    static_cast<ops::ExtrudePlacement&>(options) = placementOf(context);
    options.keepFacesTogether = context.boolean("keepFacesTogether");
    options.duplicate = context.boolean("duplicate");
    auto made = ops::chipOff(context.mesh, context.faces(), options);
    if (!made) return failWith(made.error());
    context.makes(scene::ComponentType::Face, std::move(made->faces));
    return {};
  });
}

}  // namespace host::nodes
