#include "host/ops/topology/soft_edges.h"

#include <cmath>
#include <numbers>

#include "host/base/parallel.h"
#include "host/mesh/normals.h"

namespace host::ops {
namespace {

// Faces that lie at the angle itself count as within it, whatever their floats say.
constexpr double kAngleSlack = 1e-5;

bool isWithin(const Mesh& mesh, FaceId f, FaceId g, double angle, const math::Matrix4* space) {
  math::Vec3 a = mesh::faceNormal(mesh, f), b = mesh::faceNormal(mesh, g);
  if (space) {
    a = math::transformNormal(a, *space);
    b = math::transformNormal(b, *space);
  }
  if (math::lengthSquared(a) == 0 || math::lengthSquared(b) == 0) return true;
  return std::atan2(math::length(math::cross(a, b)), math::dot(a, b)) <= angle + kAngleSlack;
}

bool isSmoothAt(const Mesh& mesh, const Mesh& own, const EdgeSides& sides, double angle,
                const math::Matrix4* space) {
  if (angle <= 0) return false;
  if (angle >= std::numbers::pi) return true;
  if (sides.faceCount > 2) return false;
  if (sides.faceCount < 2) return own.isEdgeSmooth(sides.edge);
  return isWithin(mesh, sides.first, sides.second, angle, space);
}

}  // namespace

std::vector<EdgeSides> sidesOfEdges(const Mesh& mesh, std::span<const EdgeId> edges) {
  std::vector<EdgeSides> sides;
  sides.reserve(edges.size());
  for (const EdgeId e : edges) sides.push_back({e, 0, kNone, kNone});
  const std::vector<std::uint8_t> isAsked = flagsOf(edges, mesh.edgeCount());
  const std::vector<EdgeId>& cornerEdges = mesh.topology().cornerEdges;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
      const EdgeId e = cornerEdges[c];
      if (isAsked[at(e)] == 0) continue;
      EdgeSides& entry = sides[static_cast<std::size_t>(
          std::lower_bound(edges.begin(), edges.end(), e) - edges.begin())];
      if (entry.faceCount > 0 && (entry.first == f || entry.second == f)) continue;
      (entry.faceCount == 0 ? entry.first : entry.second) = f;
      ++entry.faceCount;
    }
  return sides;
}

void softenSides(Mesh& mesh, std::span<const EdgeSides> sides, double angle,
                 const math::Matrix4* space, const Mesh* own) {
  std::vector<std::uint8_t> isSmooth(sides.size());
  constexpr std::size_t kGrain = 2048;
  parallelFor(sides.size(), kGrain, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i)
      isSmooth[i] = isSmoothAt(mesh, own ? *own : mesh, sides[i], angle, space) ? 1 : 0;
  });
  bool isChanged = false;
  for (std::size_t i = 0; i < sides.size() && !isChanged; ++i)
    isChanged = (isSmooth[i] != 0) != mesh.isEdgeSmooth(sides[i].edge);
  if (!isChanged) return;
  std::vector<std::uint8_t> flags(mesh.edgeSmooth().begin(), mesh.edgeSmooth().end());
  if (flags.empty()) flags.assign(at(mesh.edgeCount()), 1);
  for (std::size_t i = 0; i < sides.size(); ++i) flags[at(sides[i].edge)] = isSmooth[i];
  mesh.setEdgeSmooth(std::move(flags));
}

Result<void> softenEdges(Mesh& mesh, std::span<const EdgeId> edges, double angle,
                         const math::Matrix4& space) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (!std::isfinite(angle))
    return fail(ErrorKind::BadArgument, "The angle must be a finite number");
  if (edges.empty()) return {};
  const bool isOwnSpace = space == math::Matrix4();
  softenSides(mesh, sidesOfEdges(mesh, sortedIds(edges)), angle, isOwnSpace ? nullptr : &space);
  return {};
}

}  // namespace host::ops
