#include "host/ops/topology/soft_edges.h"

#include <cmath>
#include <numbers>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::ops {
namespace {

// Faces that lie at the angle itself count as within it, whatever their floats say.
constexpr double kAngleSlack = 1e-5;

bool isWithin(const Mesh& mesh, FaceId f, FaceId g, double angle) {
  const math::Vec3 a = mesh::faceNormal(mesh, f), b = mesh::faceNormal(mesh, g);
  if (math::lengthSquared(a) == 0 || math::lengthSquared(b) == 0) return true;
  return std::atan2(math::length(math::cross(a, b)), math::dot(a, b)) <= angle + kAngleSlack;
}

}  // namespace

Result<void> softenEdges(Mesh& mesh, std::span<const EdgeId> edges, double angle) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (!std::isfinite(angle)) return fail("The angle must be a finite number");
  if (edges.empty()) return {};
  std::vector<std::uint8_t> flags(mesh.edgeSmooth().begin(), mesh.edgeSmooth().end());
  if (flags.empty()) flags.assign(static_cast<std::size_t>(mesh.edgeCount()), 1);
  for (const EdgeId e : edges) {
    std::uint8_t& flag = flags[static_cast<std::size_t>(e)];
    const auto faces = mesh.adjacency().edgeFaces(e);
    if (angle <= 0)
      flag = 0;
    else if (angle >= std::numbers::pi)
      flag = 1;
    else if (faces.size() > 2)
      flag = 0;
    else if (faces.size() == 2)
      flag = isWithin(mesh, faces[0], faces[1], angle) ? 1 : 0;
  }
  mesh.setEdgeSmooth(std::move(flags));
  return {};
}

}  // namespace host::ops
