#include "host/modelling/declare/placement.h"
#include "host/ops/topology/move_components.h"

namespace host::modelling {

namespace {

Result<void> move(HistoryContext& context) {
  return ops::moveComponents(context.mesh, ops::MovedComponents::Faces, context.faces(),
                             placementOf(context));
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& ids) {
  return setPlacementFrame(context, args, node, item, ids, ComponentType::Face);
}

}  // namespace

void polyMoveFacet(Declarations& add) {
  Declaration& declaration = add("polyMoveFacet", "Moves faces, with history.")
                                 .node("polyMoveFace", typeCode("PMOF"), "polyModifierWorld")
                                 .takes(ComponentType::Face);
  addMotion(declaration);
  addLocalTurns(declaration);
  addOffset(declaration);
  addFacePlacement(declaration);
  declaration.afterFlags(setFrame)
      .trial("-ltz 0.3 -tx 0.1 -off 0.05", "f")
      .trial("-ws 1 -ry 30 -sx 1.5 -lrz 20 -lsx 2 -pvx 1", "f")
      .operation(move);
}

}  // namespace host::modelling
