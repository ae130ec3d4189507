#include <numbers>

#include "host/modelling/declare/declaration.h"
#include "host/modelling/declare/edge_flow.h"
#include "host/ops/topology/extrude_vertices.h"

namespace host::modelling {

namespace {

Result<void> duplicate(HistoryContext& context) {
  const auto type = context.choice("splitType", 2);
  if (!type) return failWith(type.error());
  ops::DuplicateEdgesOptions options;
  options.offset = context.real("offset");
  options.isAbsolute = *type == 0;
  auto made = ops::duplicateEdges(context.mesh, context.edges(), options);
  if (!made) return failWith(made.error());
  HOST_TRY(followEdgeFlow(context, *made));
  context.makes(*std::move(made));
  return {};
}

}  // namespace

void polyDuplicateEdge(Declarations& add) {
  add("polyDuplicateEdge", "Adds an edge on both sides of edges.")
      .node("polyDuplicateEdge", typeCode("PDUE"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(keyable(real("offset", "of", 0.5)), "how far along the neighbouring edges")
      .parameter(choice("splitType", "stp", {"Absolute", "Relative"}, 1),
                 "the offset is 0 a length, 1 a part of each edge")
      .parameter(real("startVertexOffset", "svo"), "of the ends of a run")
      .withoutEffect()
      .parameter(real("endVertexOffset", "evo"), "of the ends of a run")
      .withoutEffect()
      .parameter(boolean("deleteEdge", "de", true), "of the ends of a run")
      .recordedOnly()
      .parameter(angle("smoothingAngle", "sma", std::numbers::pi), "new edges stay smooth")
      .recordedOnly()
      .parameter(boolean("insertWithEdgeFlow", "ief"), "the edges follow the curvature around")
      .parameter(real("adjustEdgeFlow", "aef", 1), "how far, with -insertWithEdgeFlow")
      .trial("-of 0.3", "e")
      .trial("-of 0.05 -stp 0", "e")
      .trial("-ief 1", "e")
      .operation(duplicate);
}

}  // namespace host::modelling
