#include "host/modelling/declare/placement.h"
#include "host/ops/topology/move_components.h"

namespace host::modelling {

namespace {

Result<void> move(HistoryContext& context) {
  return ops::moveComponents(context.mesh, ops::MovedComponents::Edges, context.edges(),
                             placementOf(context));
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& ids) {
  return setPlacementFrame(context, args, node, item, ids, ComponentType::Edge);
}

}  // namespace

void polyMoveEdge(Declarations& add) {
  Declaration& declaration = add("polyMoveEdge", "Moves edges, with history.")
                                 .node("polyMoveEdge", typeCode("PMOE"), "polyModifierWorld")
                                 .takes(ComponentType::Edge);
  addMotion(declaration);
  addLocalTurns(declaration);
  declaration.afterFlags(setFrame)
      .trial("-ltz 0.3 -tx 0.1", "e")
      .trial("-ws 1 -ry 30 -sx 1.5 -lrz 20 -lsx 2 -pvx 1", "e")
      .operation(move);
}

}  // namespace host::modelling
