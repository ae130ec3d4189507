#include "host/ops/topology/subdivide_edges.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/ops/topology/edge_cutter.h"

namespace host::ops {

Result<SubdivideEdgesResult> subdivideEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                            int divisions) {
  constexpr double kMostVertices = 1e8;
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (divisions < 1)
    return fail(ErrorKind::BadArgument, "The number of divisions must be at least 1, not {}",
                divisions);
  const std::vector<EdgeId> ids = sortedIds(edges);
  if (static_cast<double>(divisions) * static_cast<double>(ids.size()) > kMostVertices)
    return fail("{} divisions of {} edges are too many", divisions, ids.size());

  EdgeCutter cutter(mesh);
  SubdivideEdgesResult result;
  for (const EdgeId e : ids) {
    pollCancel(e);
    const VertexId first = cutter.cutEvenly(e, divisions + 1);
    for (int i = 0; i < divisions; ++i) result.vertices.push_back(first + i);
  }
  cutter.buildFaces([&](FaceId f) { return cutter.hasCut(f); },
                    [&](FaceId f) { cutter.keepFace(f); });
  EdgeCutter::Outcome outcome = cutter.finish();
  for (EdgeId e = 0; e < outcome.mesh.edgeCount(); ++e) {
    pollCancel(e);
    const mesh::EdgeVertices ends = outcome.mesh.edge(e);
    if (std::max(ends.a, ends.b) >= mesh.vertexCount()) result.edges.push_back(e);
  }
  mesh = std::move(outcome.mesh);
  return result;
}

}  // namespace host::ops
