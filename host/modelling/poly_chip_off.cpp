#include "host/modelling/declare/placement.h"
#include "host/ops/topology/chip_off.h"

namespace host::modelling {

namespace {

Result<void> chip(HistoryContext& context) {
  ops::ChipOffOptions options;
  static_cast<ops::ExtrudePlacement&>(options) = placementOf(context);
  options.keepFacesTogether = context.boolean("keepFacesTogether");
  options.duplicate = context.boolean("duplicate");
  auto made = ops::chipOff(context.mesh, context.faces(), options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->faces));
  return {};
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& faces) {
  return setPlacementFrame(context, args, node, item, faces, ComponentType::Face);
}

}  // namespace

void polyChipOff(Declarations& add) {
  Declaration& declaration =
      add("polyChipOff", "Takes faces off the mesh, or copies of them.")
          .node("polyChipOff", typeCode("PCHO"), "polyModifierWorld")
          .takes(ComponentType::Face)
          .leaves(Leaves::Made)
          .parameter(boolean("keepFacesTogether", "kft", true),
                     "faces that share an edge come off in one piece")
          .parameter(boolean("duplicate", "dup", true), "copies come off and the faces stay");
  addPlacement(declaration);
  addFacePlacement(declaration);
  declaration.afterFlags(setFrame)
      .trial("-ltz 0.2 -dup 0", "f")
      .trial("-kft 0 -off 0.05 -tx 0.1 -ry 20 -sx 1.5 -lry 10 -lsx 0.5", "f")
      .operation(chip);
}

}  // namespace host::modelling
