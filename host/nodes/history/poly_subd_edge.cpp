#include "host/nodes/history/history_node.h"
#include "host/nodes/history/modelling_nodes.h"
#include "host/ops/topology/subdivide_edges.h"

namespace host::nodes {

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

}  // namespace

void registerPolySubdEdge(dg::TypeRegistry& types) {
  HistoryNodeBuilder(types, "polySubdEdge", typeCode("PSDE"), "polyModifierWorld")
      .parameter(keyable(atLeast(integer("divisions", "dv", 1), 1)))
      .parameter(atLeast(distance("size", "s"), 0))
      .operation([](HistoryContext& context) -> Result<void> {
        const int divisions = context.integer("divisions");
        std::vector<EdgeId> edges = context.edges();
        dropShort(edges, context.mesh, context.real("size"), divisions, context.space());
        auto made = ops::subdivideEdges(context.mesh, edges, divisions);
        if (!made) return failWith(made.error());
        context.makes(scene::ComponentType::Edge, std::move(made->edges));
        return {};
      });
}

}  // namespace host::nodes
