#include "host/nodes/move_points.h"

#include <vector>

#include "host/mesh/point_moves.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"

namespace host::nodes {

Result<void> moveEvaluatedPoints(dg::Node& shape, std::span<const VertexId> vertices,
                                 std::span<const math::Vec3f> places) {
  auto now = evaluatedMesh(shape);
  if (!now) return failWith(now.error());
  for (const VertexId v : vertices)
    if (v < 0 || v >= now->vertexCount()) return fail("'{}' has no vertex {}", shape.name(), v);
  if (!hasHistory(shape) && !hasTweaks(shape)) {
    mesh::movePoints(*now, vertices, places);
    return setStoredMesh(shape, *std::move(now));
  }
  std::vector<math::Vec3f> points(now->points().begin(), now->points().end());
  for (std::size_t i = 0; i < vertices.size(); ++i) points[at(vertices[i])] = places[i];
  return setEvaluatedPoints(shape, std::move(points));
}

}  // namespace host::nodes
