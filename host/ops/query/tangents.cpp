#include "host/ops/query/tangents.h"

#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/ops/query/normal_ids.h"

namespace host::ops {

using math::Vec3;
using mesh::Mesh;

namespace {

/// The direction in which u grows over the triangle at a corner, as long as the triangle is large,
/// and the sign of the UV triangle's area.
struct Gradient {
  Vec3 along;
  double uvArea = 0;
};

Gradient gradientAt(const Mesh& mesh, const mesh::UvSet& uvs, CornerId before, CornerId corner,
                    CornerId after) {
  const auto uv = [&](CornerId c) { return uvs.points[at(uvs.cornerIds[c])]; };
  const Vec3 p = mesh.point(mesh.cornerVertex(corner));
  const Vec3 a = mesh.point(mesh.cornerVertex(after)) - p;
  const Vec3 b = mesh.point(mesh.cornerVertex(before)) - p;
  const auto o = uv(corner), ua = uv(after), ub = uv(before);
  const double au = ua.u - o.u, av = ua.v - o.v, bu = ub.u - o.u, bv = ub.v - o.v;
  Gradient gradient;
  gradient.uvArea = au * bv - bu * av;
  if (gradient.uvArea == 0) return gradient;
  const Vec3 direction = (a * bv - b * av) * (gradient.uvArea < 0 ? -1.0 : 1.0);
  gradient.along = math::normalized(direction) * math::length(math::cross(a, b));
  return gradient;
}

Vec3 anyAcross(const Vec3& normal) {
  const Vec3 axis = std::fabs(normal.x) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 0, 1};
  return math::normalized(axis - normal * math::dot(axis, normal));
}

}  // namespace

CornerTangents computeTangents(const Mesh& mesh, int uvSet) {
  const mesh::UvSet& uvs = mesh.uvSet(uvSet);
  const std::size_t count = at(mesh.cornerCount());
  CornerTangents result{std::vector<mesh::Vec3f>(count), std::vector<std::uint8_t>(count, 1)};
  if (uvs.cornerIds.empty()) return result;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const auto normals = mesh.cornerNormals();
  const NormalIds normalIds = numberNormals(mesh);

  std::vector<Vec3> along(count);
  for (std::size_t c = 0; c < count; ++c) {
    if (uvs.cornerIds[c] == kNone) continue;
    const auto corner = static_cast<CornerId>(c);
    const Gradient gradient = gradientAt(mesh, uvs, adjacency.previousCorner(corner), corner,
                                         adjacency.nextCorner(corner));
    along[c] = gradient.along;
    result.isRightHanded[c] = gradient.uvArea >= 0;
  }
  for (std::size_t c = 0; c < count; ++c) {
    if (uvs.cornerIds[c] == kNone) continue;
    Vec3 sum;
    for (const CornerId other : adjacency.vertexCorners(mesh.cornerVertex(static_cast<Index>(c))))
      if (uvs.cornerIds[other] == uvs.cornerIds[c] &&
          normalIds.ofCorner[at(other)] == normalIds.ofCorner[c] &&
          result.isRightHanded[at(other)] == result.isRightHanded[c])
        sum += along[at(other)];
    const Vec3 normal(normals[c]);
    const Vec3 across = sum - normal * math::dot(sum, normal);
    const bool isUsable = math::length(across) > 1e-12 * math::length(sum);
    result.tangents[c] = (isUsable ? math::normalized(across) : anyAcross(normal)).toFloat();
  }
  return result;
}

}  // namespace host::ops
