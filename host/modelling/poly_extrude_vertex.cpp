#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/extrude_vertices.h"

namespace host::modelling {

namespace {

Result<void> extrude(HistoryContext& context) {
  ops::ExtrudeVerticesOptions options;
  options.width = context.real("width");
  options.length = context.real("length");
  options.divisions = context.integer("divisions");
  options.space = context.space();
  auto made = ops::extrudeVertices(context.mesh, context.vertices(), options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->tips));
  return {};
}

}  // namespace

void polyExtrudeVertex(Declarations& add) {
  add("polyExtrudeVertex", "Pulls vertices out to spikes.")
      .node("polyExtrudeVertex", typeCode("PEXV"), "polyModifierWorld")
      .takes(ComponentType::Vertex)
      .leaves(Leaves::Made)
      .parameter(keyable(real("length", "l")), "of the spikes, cm")
      .parameter(keyable(real("width", "w")), "of their bases along the edges, cm")
      .parameter(keyable(atLeast(integer("divisions", "d", 1), 1)), "rows of faces")
      .trial("-w 0.2 -l 0.4", "vtx")
      .trial("-w 0.1 -l 0.3 -d 3 -ws 1", "vtx")
      .operation(extrude);
}

}  // namespace host::modelling
