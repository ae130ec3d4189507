#include "host/modelling/declare/placement.h"
#include "host/ops/topology/move_components.h"

namespace host::modelling {

namespace {

Result<void> move(HistoryContext& context) {
  return ops::moveComponents(context.mesh, ops::MovedComponents::Vertices, context.vertices(),
                             placementOf(context));
}

Result<void> setFrame(Context& context, const ParsedArgs& args, Node& node, const MeshItem& item,
                      const std::vector<Index>& ids) {
  return setPlacementFrame(context, args, node, item, ids, ComponentType::Vertex);
}

}  // namespace

void polyMoveVertex(Declarations& add) {
  Declaration& declaration = add("polyMoveVertex", "Moves vertices, with history.")
                                 .node("polyMoveVertex", typeCode("PMOV"), "polyModifierWorld")
                                 .takes(ComponentType::Vertex);
  addMotion(declaration);
  declaration.afterFlags(setFrame)
      .trial("-ltz 0.3 -tx 0.1", "vtx")
      .trial("-ws 1 -ry 30 -sx 1.5 -pvx 1", "vtx")
      .operation(move);
}

}  // namespace host::modelling
