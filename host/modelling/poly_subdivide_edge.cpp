#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/subdivide_edges.h"

namespace host::modelling {

namespace {

/// Leaves out edges whose pieces would be shorter than `size`, measured in `space`.
void dropShort(std::vector<EdgeId>& edges, const mesh::Mesh& mesh, double size, int divisions,
               const math::Matrix4& space) {
  if (size <= 0) return;
  std::erase_if(edges, [&](EdgeId edge) {
    const mesh::EdgeVertices ends = mesh.edge(edge);
    const math::Vec3 way = math::transformPoint(mesh.point(ends.a), space) -
                           math::transformPoint(mesh.point(ends.b), space);
    return math::length(way) < size * (divisions + 1);
  });
}

Result<void> subdivide(HistoryContext& context) {
  const int divisions = context.integer("divisions");
  std::vector<EdgeId> edges = context.edges();
  dropShort(edges, context.mesh, context.real("size"), divisions, context.space());
  auto made = ops::subdivideEdges(context.mesh, edges, divisions);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->edges));
  return {};
}

}  // namespace

void polySubdivideEdge(Declarations& add) {
  add("polySubdivideEdge", "Puts vertices on edges.")
      .node("polySubdEdge", typeCode("PSDE"), "polyModifierWorld")
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .parameter(keyable(atLeast(integer("divisions", "dv", 1), 1)), "new vertices an edge")
      .parameter(atLeast(distance("size", "s"), 0), "edges whose pieces would be shorter stay")
      .trial("-dv 2", "e")
      .trial("-s 0.4 -ws 1", "e")
      .operation(subdivide);
}

}  // namespace host::modelling
