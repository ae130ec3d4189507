#include "host/ops/topology/merge_edges.h"

#include <numeric>

#include "host/mesh/adjacency.h"
#include "host/ops/topology/weld.h"
#include "host/ops/uv/sew_uvs.h"

namespace host::ops {

namespace {

/// Puts two vertices in their common place.
void bringTogether(std::span<math::Vec3f> points, VertexId first, VertexId second,
                   MergePlace place) {
  math::Vec3f &a = points[at(first)], &b = points[at(second)];
  if (place == MergePlace::First) b = a;
  if (place == MergePlace::Last) a = b;
  if (place == MergePlace::Middle) a = b = ((math::Vec3(a) + math::Vec3(b)) * 0.5).toFloat();
}

}  // namespace

Result<EditMaps> mergeEdges(Mesh& mesh, EdgeId first, EdgeId second,
                            const MergeEdgesOptions& options) {
  const EdgeId both[] = {first, second};
  HOST_TRY(checkIds("edge", both, mesh.edgeCount()));
  if (first == second)
    return fail(ErrorKind::BadArgument, "Edge {} can't be merged with itself", first);
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (const EdgeId e : both)
    if (!adjacency.isBorderEdge(e))
      return fail(ErrorKind::BadArgument,
                  "Edge {} is not on a border: only border edges can be merged", e);
  const CornerId one = adjacency.edgeCorners(first)[0], two = adjacency.edgeCorners(second)[0];
  // The faces wind alike when they walk the edge in opposite directions.
  const VertexId a = mesh.cornerVertex(one), b = mesh.cornerVertex(adjacency.nextCorner(one)),
                 c = mesh.cornerVertex(two), d = mesh.cornerVertex(adjacency.nextCorner(two));
  PerElement<VertexId, VertexId> targets(mesh.vertexCount());
  std::iota(targets.begin(), targets.end(), 0);
  const auto points = mesh.editPoints();
  for (const auto& [from, to] : {std::pair(a, d), std::pair(b, c)}) {
    if (from == to) continue;
    bringTogether(points, from, to, options.place);
    targets[std::max(from, to)] = std::min(from, to);
  }
  // Where the edges share a vertex its other ends may be joined in a chain.
  for (VertexId& target : targets) target = targets[target];
  const bool isSmooth = mesh.isEdgeSmooth(first);
  EditMaps maps = weldVertices(mesh, targets);
  const EdgeId merged = maps.edges[at(std::min(first, second))];
  if (merged == kNone) return maps;
  mesh.setEdgeSmooth(merged, isSmooth);
  if (options.mergesUvs)
    for (int set = 0; set < mesh.uvSetCount(); ++set)
      (void)sewUvs(mesh, set, std::span(&merged, 1));
  return maps;
}

}  // namespace host::ops
