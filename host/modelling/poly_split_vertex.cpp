#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/detach_components.h"

namespace host::modelling {

namespace {

Result<void> split(HistoryContext& context) {
  auto made = ops::detachVertices(context.mesh, context.vertices());
  if (!made) return failWith(made.error());
  context.makes(std::move(made->vertices));
  return {};
}

}  // namespace

void polySplitVertex(Declarations& add) {
  add("polySplitVertex", "Gives every face at vertices a vertex of its own.")
      .node("polySplitVert", typeCode("PSPV"), "polyModifierWorld")
      .parameter(boolean("worldSpace", "ws"), "the pieces lie where the vertex was")
      .recordedOnly()
      .takes(ComponentType::Vertex)
      .leaves(Leaves::Made)
      .trial("", "vtx")
      .operation(split);
}

}  // namespace host::modelling
