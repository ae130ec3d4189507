#include "host/api/mesh/mesh_moves.h"

#include <algorithm>

#include "host/nodes/move_points.h"

namespace host::api {

MStatus movePoints(const MeshTarget& target, std::span<const VertexId> vertices,
                   std::span<const math::Vec3f> places) {
  if (target.shape())
    return toStatus(nodes::moveEvaluatedPoints(*target.shape(), vertices, places));
  const scene::MeshDataPtr data = target.read();
  if (!data) return MStatus::kFailure;
  const std::span<const math::Vec3f> now = data->mesh.points();
  std::vector<math::Vec3f> points(now.begin(), now.end());
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    if (vertices[i] < 0 || at(vertices[i]) >= points.size()) return MStatus::kInvalidParameter;
    points[at(vertices[i])] = places[i];
  }
  return target.writePoints(std::move(points));
}

}  // namespace host::api
