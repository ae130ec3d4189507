#include "host/modelling/declare/uv_edit.h"
#include "host/ops/uv/uv_rectangle.h"

namespace host::modelling {

namespace {

Result<void> lay(HistoryContext& context) {
  const auto set = uvSetOf(context);
  if (!set) return failWith(set.error());
  const std::vector<VertexId> vertices = context.vertices();
  if (vertices.size() != 2)
    return fail("choose two vertices, opposite corners of a rectangle, not {}", vertices.size());
  const auto faces = ops::mapUvRectangle(context.mesh, *set, vertices[0], vertices[1]);
  return faces ? Result<void>() : failWith(faces.error());
}

}  // namespace

void polyUvRectangle(Declarations& add) {
  Declaration& declaration =
      add("polyUVRectangle", "Lays a rectangle of quads between two vertices over the unit square.")
          .node("polyUVRectangle", typeCode("PUVR"))
          .takes(ComponentType::Vertex);
  addUvSetName(declaration);
  declaration.trial("", "vtx").operation(lay);
}

}  // namespace host::modelling
