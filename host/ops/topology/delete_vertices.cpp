#include "host/ops/topology/delete_vertices.h"

#include "host/mesh/adjacency.h"
#include "host/ops/topology/face_joiner.h"

namespace host::ops {

Result<EditMaps> deleteVertices(Mesh& mesh, std::span<const VertexId> vertices) {
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  const std::vector<VertexId> ids = sortedIds(vertices);
  FaceJoiner joiner(mesh);
  for (const VertexId v : ids)
    for (const EdgeId e : mesh.adjacency().vertexEdges(v)) joiner.removeEdge(e);
  for (const VertexId v : ids) joiner.cutVertex(v);
  return joiner.finish(mesh);
}

}  // namespace host::ops
