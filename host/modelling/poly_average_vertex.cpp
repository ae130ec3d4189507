#include "host/modelling/declare/declaration.h"
#include "host/ops/smooth/average_vertices.h"

namespace host::modelling {

namespace {

Result<void> average(HistoryContext& context) {
  ops::AverageVerticesOptions options;
  options.iterations = context.integer("iterations");
  options.alpha = context.real("alpha");
  options.beta = context.real("beta");
  return ops::averageVertices(context.mesh, context.vertices(), options);
}

}  // namespace

void polyAverageVertex(Declarations& add) {
  add("polyAverageVertex", "Evens out vertices without shrinking the mesh.")
      .node("polyAverageVertex", typeCode("PAVT"), "polyModifierWorld")
      .takes(ComponentType::Vertex)
      .parameter(keyable(limited(integer("iterations", "i", 10), 0, 10000)), "how often")
      .parameter(single("alpha", "a", 0.5), "how much the first places count")
      .noFlag()
      .parameter(single("beta", "b", 0.7), "how much of the way back is each vertex's own")
      .noFlag()
      .parameter(boolean("worldSpace", "ws"), "means are the same in every space")
      .recordedOnly()
      .trial("-i 3", "vtx")
      .operation(average);
}

}  // namespace host::modelling
