#include "host/ops/topology/delete_edges.h"

#include "host/base/cancel_poll.h"
#include "host/ops/topology/face_joiner.h"

namespace host::ops {

Result<DeleteEdgesResult> deleteEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                      const DeleteEdgesOptions& options) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  const std::vector<EdgeId> ids = sortedIds(edges);
  FaceJoiner joiner(mesh);
  DeleteEdgesResult result;
  std::vector<VertexId> ends;
  // An edge that is in the way of another may come free when others go, so a second round looks at
  // what stayed.
  std::vector<EdgeId> open = ids;
  for (bool isProgress = true; isProgress && !open.empty();) {
    std::vector<EdgeId> stayed;
    for (const EdgeId e : open) {
      pollCancel(e);
      if (!joiner.removeEdge(e)) {
        stayed.push_back(e);
        continue;
      }
      ends.push_back(mesh.edge(e).a);
      ends.push_back(mesh.edge(e).b);
    }
    isProgress = stayed.size() < open.size();
    open = std::move(stayed);
  }
  if (options.cleanVertices)
    for (const VertexId v : sortedIds(ends)) joiner.removeWingedVertex(v);
  result.maps = joiner.finish(mesh);
  for (const EdgeId e : ids) result.deleted += result.maps.edges[at(e)] == kNone ? 1 : 0;
  return result;
}

}  // namespace host::ops
