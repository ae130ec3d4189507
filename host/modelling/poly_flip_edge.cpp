#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/spin_edges.h"

namespace host::modelling {

namespace {

/// Only diagonals flip: edges between two triangles.
Result<void> flip(HistoryContext& context) {
  std::vector<EdgeId> edges = context.edges();
  const mesh::Mesh& mesh = context.mesh;
  std::erase_if(edges, [&](EdgeId edge) {
    const auto faces = mesh.adjacency().edgeFaces(edge);
    return !std::ranges::all_of(faces, [&](FaceId face) { return mesh.faceSize(face) == 3; });
  });
  const auto spun = ops::spinEdges(context.mesh, edges, 1);
  if (!spun) return failWith(spun.error());
  context.makes(std::move(edges));
  return {};
}

}  // namespace

void polyFlipEdge(Declarations& add) {
  add("polyFlipEdge", "Turns the diagonals of pairs of triangles.")
      .node("polyFlipEdge", typeCode("PFLE"))
      .takes(ComponentType::Edge)
      .leaves(Leaves::Made)
      .trial("", "e")
      .operation(flip);
}

}  // namespace host::modelling
