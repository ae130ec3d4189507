#include "host/ops/uv/project_uvs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <tuple>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/ops/uv/uv_ids.h"

namespace host::ops {

namespace {

using math::Matrix4;
using math::Vec3;
using mesh::Mesh;
using mesh::Vec2f;

constexpr double kPi = std::numbers::pi;

/// Where a corner is seen: its place before the image is placed, and what it shares its UV with.
struct Seen {
  double u = 0, v = 0;
  int turn = 0;           ///< whole turns past the seam
  bool isOnAxis = false;  ///< the face alone says where
};

class Projector {
 public:
  explicit Projector(const UvProjection& projection)
      : projection_(projection),
        cos_(std::cos(projection.imageAngle)),
        sin_(std::sin(projection.imageAngle)) {}

  /// The corners of one face.
  void look(const Mesh& mesh, FaceId face, std::vector<Seen>& seen) const {
    const auto loop = mesh.faceVertices(face);
    seen.resize(loop.size());
    if (projection_.shape == UvProjectionShape::Planar) {
      for (std::size_t i = 0; i < loop.size(); ++i) {
        const Vec3 p = local(mesh, loop[i]);
        seen[i] = {p.x / projection_.width, p.y / projection_.height};
      }
      return;
    }
    double x = 0, z = 0;
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const Vec3 p = local(mesh, loop[i]);
      const double radius = std::hypot(p.x, p.z);
      seen[i].isOnAxis = radius <= 1e-7 * std::abs(p.y) || radius == 0;
      seen[i].turn = 0;
      seen[i].u = seen[i].isOnAxis ? 0 : std::atan2(p.x, p.z);
      seen[i].v =
          projection_.shape == UvProjectionShape::Cylindrical ? p.y : std::atan2(p.y, radius);
      if (seen[i].isOnAxis) continue;
      x += p.x / radius;
      z += p.z / radius;
    }
    correctSeam(x, z, seen);
    for (Seen& each : seen) {
      each.u /= projection_.width;
      each.v /= projection_.height;
    }
  }

  [[nodiscard]] Vec2f place(const Seen& seen) const {
    const double u = (cos_ * seen.u - sin_ * seen.v) * projection_.imageScaleU;
    const double v = (sin_ * seen.u + cos_ * seen.v) * projection_.imageScaleV;
    return {static_cast<float>(u + projection_.imageCenterU),
            static_cast<float>(v + projection_.imageCenterV)};
  }

 private:
  [[nodiscard]] Vec3 local(const Mesh& mesh, VertexId v) const {
    return math::transformPoint(mesh.point(v), projection_.toProjection);
  }

  /// Brings the corners to one side: that of the middle direction (x, z). A face around the axis
  /// has none.
  void correctSeam(double x, double z, std::vector<Seen>& seen) const {
    if (!projection_.correctsSeam || std::hypot(x, z) < 1e-6 * static_cast<double>(seen.size())) {
      for (Seen& each : seen) each.isOnAxis = false;
      return;
    }
    const double middle = std::atan2(x, z);
    double sum = 0;
    Index count = 0;
    for (Seen& each : seen) {
      if (each.isOnAxis) continue;
      if (each.u - middle > kPi) each.turn = -1;
      if (each.u - middle < -kPi) each.turn = 1;
      each.u += 2 * kPi * each.turn;
      sum += each.u;
      ++count;
    }
    for (Seen& each : seen)
      if (each.isOnAxis) each.u = count > 0 ? sum / count : 0;
  }

  UvProjection projection_;
  double cos_, sin_;
};

bool isFinitePlace(const Vec2f& place) {
  return std::isfinite(place.u) && std::isfinite(place.v);
}

/// Turns a symmetric matrix until it is diagonal (Jacobi); the rows of `axes` are its directions.
void diagonalise(std::array<std::array<double, 3>, 3>& m, std::array<Vec3, 3>& axes) {
  axes = {Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(0, 0, 1)};
  for (int sweep = 0; sweep < 30; ++sweep)
    for (const auto& [p, q] : {std::pair<std::size_t, std::size_t>{0, 1}, {0, 2}, {1, 2}}) {
      if (std::abs(m[p][q]) <= 1e-300) continue;
      const double theta = (m[q][q] - m[p][p]) / (2 * m[p][q]);
      const double t = (theta < 0 ? -1 : 1) / (std::abs(theta) + std::sqrt(theta * theta + 1));
      const double c = 1 / std::sqrt(t * t + 1), s = t * c;
      for (std::size_t k = 0; k < 3; ++k) {
        const double a = m[k][p], b = m[k][q];
        m[k][p] = c * a - s * b;
        m[k][q] = s * a + c * b;
      }
      for (std::size_t k = 0; k < 3; ++k) {
        const double a = m[p][k], b = m[q][k];
        m[p][k] = c * a - s * b;
        m[q][k] = s * a + c * b;
      }
      const Vec3 a = axes[p], b = axes[q];
      axes[p] = a * c - b * s;
      axes[q] = a * s + b * c;
    }
}

}  // namespace

Result<void> projectUvs(Mesh& mesh, int uvSet, std::span<const FaceId> faces,
                        const UvProjection& projection) {
  if (faces.empty()) return {};
  if (!(std::abs(projection.width) > 0) || !(std::abs(projection.height) > 0))
    return fail("the projection has no size: its scale is 0");
  const Projector projector(projection);
  const std::size_t first = mesh.uvSet(uvSet).points.size();
  PerElement<VertexId, UvId> plain(mesh.vertexCount(), kNone);
  std::vector<Vec2f> places;
  std::vector<Seen> seen;
  // Once to see which vertices there are, so that their UVs follow their order.
  for (const FaceId f : faces) {
    pollCancel(f);
    projector.look(mesh, f, seen);
    const auto loop = mesh.faceVertices(f);
    for (std::size_t i = 0; i < loop.size(); ++i) {
      if (!isFinitePlace(projector.place(seen[i])))
        return fail("vertex {} can't be projected: it has no place in the image", loop[i]);
      if (seen[i].turn == 0 && !seen[i].isOnAxis) plain[loop[i]] = 0;
    }
  }
  auto next = static_cast<UvId>(first);
  for (UvId& uv : plain)
    if (uv != kNone) uv = next++;
  places.resize(at(next) - first);

  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  std::map<std::tuple<VertexId, int, FaceId>, UvId> special;
  for (const FaceId f : faces) {
    pollCancel(f);
    projector.look(mesh, f, seen);
    const CornerId corner = mesh.firstCorner(f);
    for (std::size_t i = 0; i < seen.size(); ++i) {
      pollCancel(i);
      const VertexId v = mesh.cornerVertex(corner + static_cast<Index>(i));
      UvId uv = plain[v];
      if (seen[i].turn != 0 || seen[i].isOnAxis) {
        const auto [entry, isNew] =
            special.try_emplace({v, seen[i].turn, seen[i].isOnAxis ? f : kNone}, next);
        if (isNew) {
          ++next;
          places.emplace_back();
        }
        uv = entry->second;
      }
      places[at(uv) - first] = projector.place(seen[i]);
      ids[at(corner) + i] = uv;
    }
  }
  set.points.insert(set.points.end(), places.begin(), places.end());
  dropUnusedUvs(set, before);
  return {};
}

Matrix4 bestPlaneAxes(const Mesh& mesh, std::span<const FaceId> faces) {
  Vec3 mean, area;
  double count = 0;
  for (const FaceId f : faces)
    for (const VertexId v : mesh.faceVertices(f)) {
      mean += mesh.point(v);
      ++count;
    }
  if (count == 0) return {};
  mean *= 1 / count;
  std::array<std::array<double, 3>, 3> spread{};
  for (const FaceId f : faces) {
    pollCancel(f);
    const auto loop = mesh.faceVertices(f);
    for (std::size_t i = 0; i < loop.size(); ++i) {
      const Vec3 d = mesh.point(loop[i]) - mean;
      area += math::cross(d, mesh.point(loop[(i + 1) % loop.size()]) - mean);
      for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
          spread[row][column] += d[static_cast<int>(row)] * d[static_cast<int>(column)];
    }
  }
  std::array<Vec3, 3> axes;
  diagonalise(spread, axes);
  std::array<std::size_t, 3> order{0, 1, 2};
  std::ranges::stable_sort(
      order, [&](std::size_t a, std::size_t b) { return spread[a][a] > spread[b][b]; });
  Vec3 x = math::normalized(axes[order[0]]), z = math::normalized(axes[order[2]]);
  if (math::dot(z, area) < 0) z = -z;
  // Of the two ways x may point, the one that is not upside down.
  if (x.x + x.y + x.z < 0) x = -x;
  const Vec3 y = math::cross(z, x);
  Matrix4 rows;
  const Vec3 all[] = {x, y, z};
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column) rows[row][column] = all[row][column];
  return rows;
}

}  // namespace host::ops
