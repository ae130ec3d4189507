#include "host/ops/boolean/solid_side.h"

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"

namespace host::ops {

namespace {

ExactInteger determinant(const std::array<ExactInteger, 3>& a, const std::array<ExactInteger, 3>& b,
                         const std::array<ExactInteger, 3>& c) {
  return a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
         a[2] * (b[0] * c[1] - b[1] * c[0]);
}

double toDouble(const ExactInteger& over, const ExactInteger& under) {
  int up = 0, down = 0;
  const double a = over.fraction(up), b = under.fraction(down);
  return std::ldexp(a / b, up - down);
}

}  // namespace

ExactPoint exactMiddle(const ExactPoints& points, const std::array<PointId, 3>& of) {
  const ExactPoint p[3] = {points.exact(of[0]), points.exact(of[1]), points.exact(of[2])};
  const ExactInteger ab = p[0].w * p[1].w, bc = p[1].w * p[2].w, ca = p[2].w * p[0].w;
  ExactPoint middle;
  middle.w = ExactInteger(3) * ab * p[2].w;
  for (std::size_t i = 0; i < 3; ++i)
    middle.x[i] = p[0].x[i] * bc + p[1].x[i] * ca + p[2].x[i] * ab;
  return middle;
}

SolidSide::SolidSide(Arrangement& arrangement, int side) : arrangement_(arrangement), side_(side) {
  findClosed();
  if (isClosed_ || arrangement.firstFace(side) == arrangement.endFace(side)) return;
  PerElement<FaceId, std::uint8_t> keep(arrangement.mesh().faceCount(), 0);
  for (FaceId f = arrangement.firstFace(side); f < arrangement.endFace(side); ++f) keep[f] = 1;
  open_ = mesh::keepFaces(arrangement.mesh(), keep).mesh;
  nearest_ = std::make_unique<spatial::Accelerator>(open_);
}

void SolidSide::findClosed() {
  const mesh::Mesh& mesh = arrangement_.mesh();
  const ExactPoints& points = arrangement_.points();
  // Most edges cancel out as they are; the others may by where they lie.
  PerElement<EdgeId, int> sums(mesh.edgeCount(), 0);
  double volume = 0;
  for (FaceId f = arrangement_.firstFace(side_); f < arrangement_.endFace(side_); ++f) {
    const auto vertices = mesh.faceVertices(f);
    const auto edges = mesh.faceEdges(f);
    for (std::size_t i = 0; i < vertices.size(); ++i)
      sums[edges[i]] += mesh.edge(edges[i]).a == vertices[i] ? 1 : -1;
    const auto place = [&](std::size_t i) { return points.near(points.ofVertex(vertices[i])); };
    for (std::size_t i = 2; i < vertices.size(); ++i)
      volume += dot(place(0), cross(place(i - 1), place(i)));
  }
  std::unordered_map<std::uint64_t, int> byPlace;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    if (sums[e] == 0) continue;
    const PointId a = points.ofVertex(mesh.edge(e).a), b = points.ofVertex(mesh.edge(e).b);
    if (a != b) byPlace[Arrangement::pairKey(a, b)] += a < b ? sums[e] : -sums[e];
  }
  isClosed_ = true;
  for (const auto& [edge, sum] : byPlace) isClosed_ = isClosed_ && sum == 0;
  isInsideOut_ = isClosed_ && volume < 0;
}

bool SolidSide::holds(const ExactPoint& point) {
  if (arrangement_.firstFace(side_) == arrangement_.endFace(side_)) return false;
  const math::Vec3 near{toDouble(point.x[0], point.w), toDouble(point.x[1], point.w),
                        toDouble(point.x[2], point.w)};
  if (!isClosed_) return isBehindNearest(near);
  // A ray meets an edge or lies in a face once in ages; the next one then does not.
  std::uint64_t state = 0x9E3779B97F4A7C15ULL;
  for (int attempt = 0; attempt < 100; ++attempt) {
    GridPoint direction{};
    for (std::int64_t& value : direction) {
      state = state * 6364136223846793005ULL + 1442695040888963407ULL;
      value = static_cast<std::int64_t>((state >> 43U) | 1U) - (std::int64_t{1} << 20U);
    }
    if (const auto winding = windingAlong(point, near, direction)) return *winding != 0;
  }
  return false;
}

std::optional<int> SolidSide::windingAlong(const ExactPoint& point, const math::Vec3& near,
                                           const GridPoint& direction) {
  std::vector<FaceId> faces;
  const math::Vec3 along{static_cast<double>(direction[0]), static_cast<double>(direction[1]),
                         static_cast<double>(direction[2])};
  arrangement_.tree(side_).forEachOnRay(near, along, 1, [&](FaceId f) { faces.push_back(f); });
  int winding = 0;
  for (const FaceId face : faces) {
    const auto [first, end] = arrangement_.trianglesOf(face);
    for (Index t = first; t < end; ++t) {
      if (arrangement_.triangle(t).isFlat) continue;
      const auto times = crossing(point, direction, arrangement_.triangle(t));
      if (!times) return std::nullopt;
      winding += *times;
    }
  }
  return winding;
}

std::optional<int> SolidSide::crossing(const ExactPoint& point, const GridPoint& direction,
                                       const FaceTriangle& triangle) const {
  const ExactPoints& points = arrangement_.points();
  std::array<std::array<ExactInteger, 3>, 3> corners;
  for (std::size_t k = 0; k < 3; ++k) {
    const GridPoint& p = points.grid(triangle.points[k]);
    for (std::size_t i = 0; i < 3; ++i) corners[k][i] = ExactInteger(p[i]) * point.w - point.x[i];
  }
  const std::array<ExactInteger, 3> d{direction[0], direction[1], direction[2]};
  int sides[3], positive = 0, negative = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    sides[k] = determinant(d, corners[k], corners[(k + 1) % 3]).sign();
    positive += sides[k] > 0;
    negative += sides[k] < 0;
  }
  if (positive > 0 && negative > 0) return 0;
  // Ahead when the point is on the side of the plane that the ray leaves from.
  const int volume = determinant(corners[0], corners[1], corners[2]).sign();
  if (positive + negative < 3) {
    // Through the border of the triangle's shadow, but perhaps behind.
    if (positive + negative == 0 || volume == 0) return std::nullopt;
    return volume == (positive > 0 ? 1 : -1) ? std::optional<int>() : std::optional<int>(0);
  }
  const int towards = positive > 0 ? 1 : -1;
  if (volume == 0) return std::nullopt;
  return volume == towards ? towards : 0;
}

bool SolidSide::isBehindNearest(const math::Vec3& point) {
  const math::Vec3 place = point * arrangement_.points().gridStep();
  const auto found = nearest_->closestPoint(place);
  if (!found) return false;
  constexpr double kOnBorder = 1e-7;
  const double weights[3] = {1 - found->u - found->v, found->u, found->v};
  std::vector<VertexId> at;
  for (std::size_t k = 0; k < 3; ++k)
    if (weights[k] > kOnBorder) at.push_back(open_.cornerVertex(found->corners[k]));
  math::Vec3 normal = found->normal;
  if (at.size() == 1) {
    normal = mesh::vertexNormal(open_, at[0]);
  } else if (at.size() == 2) {
    const EdgeId edge = open_.adjacency().findEdge(at[0], at[1]);
    if (edge != kNone) {
      normal = {};
      for (const FaceId f : open_.adjacency().edgeFaces(edge)) normal += mesh::faceNormal(open_, f);
    }
  }
  return dot(place - found->point, normal) < 0;
}

}  // namespace host::ops
