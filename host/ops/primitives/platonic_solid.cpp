#include "host/ops/primitives/platonic_solid.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <utility>

#include "host/ops/primitives/primitive_builder.h"

namespace host::ops {
namespace {

struct Shape {
  std::vector<Vec3> points;                  ///< on the unit sphere
  std::vector<std::vector<VertexId>> faces;  ///< wound so that they look outwards
};

/// The faces of a convex solid, each of the vertices that lie farthest in a direction, wound around
/// it.
Shape solidOf(std::vector<Vec3> points, const std::vector<Vec3>& faceDirections) {
  Shape shape;
  for (Vec3& point : points) point = math::normalized(point);
  for (const Vec3& given : faceDirections) {
    const Vec3 normal = math::normalized(given);
    double farthest = 0;
    for (const Vec3& point : points) farthest = std::max(farthest, math::dot(point, normal));
    std::vector<VertexId> face;
    for (std::size_t i = 0; i < points.size(); ++i)
      if (math::dot(points[i], normal) > farthest - 1e-6) face.emplace_back(static_cast<Index>(i));
    const Vec3 right = math::normalized(points[at(face.front())] - normal * farthest);
    const Vec3 up = math::cross(normal, right);
    const auto angle = [&](VertexId v) {
      const double turn = std::atan2(math::dot(points[at(v)], up), math::dot(points[at(v)], right));
      return turn < -1e-9 ? turn + 2 * std::numbers::pi : turn;
    };
    std::ranges::sort(face, [&](VertexId a, VertexId b) { return angle(a) < angle(b); });
    shape.faces.push_back(std::move(face));
  }
  shape.points = std::move(points);
  return shape;
}

/// The six directions of a golden rectangle's corners in each of the three planes.
std::vector<Vec3> goldenRectangles() {
  constexpr double kGolden = std::numbers::phi;
  std::vector<Vec3> all;
  for (const double y : {1.0, -1.0})
    for (const double s : {1.0, -1.0}) all.push_back({s, y * kGolden, 0});
  for (const double z : {1.0, -1.0})
    for (const double s : {1.0, -1.0}) all.push_back({0, s, z * kGolden});
  for (const double x : {1.0, -1.0})
    for (const double s : {1.0, -1.0}) all.push_back({x * kGolden, 0, s});
  return all;
}

/// A cube's corners and those that the dodecahedron has beside them.
std::vector<Vec3> dodecahedronPoints() {
  constexpr double kGolden = std::numbers::phi;
  std::vector<Vec3> all;
  for (const double y : {1.0, -1.0})
    for (const double z : {1.0, -1.0})
      for (const double x : {1.0, -1.0}) all.push_back({x, y, z});
  for (const double a : {1.0, -1.0})
    for (const double b : {1.0, -1.0}) {
      all.push_back({0, a * kGolden, b / kGolden});
      all.push_back({a / kGolden, 0, b * kGolden});
      all.push_back({a * kGolden, b / kGolden, 0});
    }
  return all;
}

std::vector<Vec3> cubeCorners() {
  std::vector<Vec3> all;
  for (const double y : {1.0, -1.0})
    for (const double z : {1.0, -1.0})
      for (const double x : {1.0, -1.0}) all.push_back({x, y, z});
  return all;
}

Shape shapeOf(PlatonicSolid solid) {
  switch (solid) {
    case PlatonicSolid::Icosahedron:
      return solidOf(goldenRectangles(), dodecahedronPoints());
    case PlatonicSolid::Octahedron:
      return solidOf({{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, -1}, {-1, 0, 0}, {0, -1, 0}},
                     cubeCorners());
    case PlatonicSolid::Tetrahedron: {
      // One vertex up the axis, the others a triangle below.
      const double low = -1.0 / 3, out = std::sqrt(8.0) / 3;
      std::vector<Vec3> points{{0, 1, 0}};
      for (int i = 0; i < 3; ++i) {
        const double angle = 2 * std::numbers::pi * i / 3;
        points.push_back({out * std::sin(angle), low, out * std::cos(angle)});
      }
      std::vector<Vec3> directions;
      for (const Vec3& point : points) directions.push_back(point * -1.0);
      return solidOf(points, directions);
    }
    case PlatonicSolid::Dodecahedron:
      break;
  }
  return solidOf(dodecahedronPoints(), goldenRectangles());
}

struct Flat {
  double u = 0, v = 0;
};

/// Lays faces flat, one beside the other across their edges.
class Net {
 public:
  explicit Net(const Shape& shape) : shape_(shape), ids_(shape.faces.size()) {
    lay(0, {}, {});
    for (std::size_t next = 0; next < order_.size(); ++next) layAround(order_[next]);
  }
  [[nodiscard]] std::vector<Flat>& points() { return points_; }
  [[nodiscard]] const std::vector<Index>& ids(std::size_t face) const { return ids_[face]; }

 private:
  struct Side {
    Index from = kNone, to = kNone;  ///< net points
    VertexId a{kNone}, b{kNone};     ///< the face runs from a to b there
  };

  void layAround(std::size_t face) {
    const std::vector<VertexId>& corners = shape_.faces[face];
    for (std::size_t k = 0; k < corners.size(); ++k) {
      const std::size_t after = (k + 1) % corners.size();
      for (std::size_t other = 0; other < shape_.faces.size(); ++other)
        if (ids_[other].empty() && runs(other, corners[after], corners[k]))
          lay(other, Side{ids_[face][after], ids_[face][k], corners[after], corners[k]}, {});
    }
  }
  [[nodiscard]] bool runs(std::size_t face, VertexId a, VertexId b) const {
    const std::vector<VertexId>& corners = shape_.faces[face];
    for (std::size_t k = 0; k < corners.size(); ++k)
      if (corners[k] == a && corners[(k + 1) % corners.size()] == b) return true;
    return false;
  }
  /// A face's corners follow one another by turning left at each, all sides being of one length.
  void lay(std::size_t face, const Side& side, Flat start) {
    const std::vector<VertexId>& corners = shape_.faces[face];
    const std::size_t count = corners.size();
    const double length =
        math::length(shape_.points[at(corners[0])] - shape_.points[at(corners[1])]);
    const bool isFirst = side.from == kNone;
    std::size_t first = 0;
    while (!isFirst && corners[first] != side.a) ++first;
    Flat place = isFirst ? start : points_[at(side.from)];
    double heading = 0;
    if (!isFirst) {
      const Flat& to = points_[at(side.to)];
      heading = std::atan2(to.v - place.v, to.u - place.u);
    }
    std::vector<Index>& ids = ids_[face];
    ids.assign(count, kNone);
    for (std::size_t k = 0; k < count; ++k) {
      Index& id = ids[(first + k) % count];
      if (!isFirst && k < 2) {
        id = k == 0 ? side.from : side.to;
      } else {
        id = static_cast<Index>(points_.size());
        points_.push_back(place);
      }
      place.u += length * std::cos(heading);
      place.v += length * std::sin(heading);
      heading += 2 * std::numbers::pi / static_cast<double>(count);
    }
    order_.push_back(face);
  }

  const Shape& shape_;
  std::vector<Flat> points_;
  std::vector<std::vector<Index>> ids_;
  std::vector<std::size_t> order_;
};

/// Moves points to the origin's quarter, and into the unit square: stretched or in proportion.
void fit(std::span<Flat> points, int mode, double radius) {
  Flat low = points[0], high = points[0];
  for (const Flat& p : points) {
    low = {std::min(low.u, p.u), std::min(low.v, p.v)};
    high = {std::max(high.u, p.u), std::max(high.v, p.v)};
  }
  Flat scale{1 / (high.u - low.u), 1 / (high.v - low.v)};
  if (mode == 1) scale = {radius, radius};
  if (mode == 4) scale.u = scale.v = std::min(scale.u, scale.v);
  for (Flat& p : points) p = {(p.u - low.u) * scale.u, (p.v - low.v) * scale.v};
}

/// The UV ids of every face's corners.
std::vector<std::vector<UvId>> addUvs(PrimitiveBuilder& builder, const Shape& shape, int mode,
                                      double radius) {
  Net net(shape);
  std::vector<std::vector<UvId>> ids(shape.faces.size());
  if (mode != 2) fit(net.points(), mode, radius);
  if (mode != 2)
    for (const Flat& p : net.points()) builder.addUv(p.u, p.v);
  for (std::size_t face = 0; face < ids.size(); ++face) {
    std::vector<Flat> own;
    for (const Index id : net.ids(face)) own.push_back(net.points()[at(id)]);
    if (mode == 2) fit(own, 3, radius);
    for (std::size_t k = 0; k < own.size(); ++k)
      ids[face].push_back(mode == 2 ? builder.addUv(own[k].u, own[k].v) : UvId(net.ids(face)[k]));
  }
  return ids;
}

}  // namespace

double platonicSideLength(PlatonicSolid solid) {
  const Shape shape = shapeOf(solid);
  return math::length(shape.points[at(shape.faces[0][0])] - shape.points[at(shape.faces[0][1])]);
}

Result<Mesh> makePlatonicSolid(const PlatonicSolidOptions& options) {
  HOST_TRY(checkSize("The solid's radius", options.radius));
  HOST_TRY(checkAxis(options.axis));
  if (options.createUVs < 0 || options.createUVs > 4)
    return fail(ErrorKind::BadArgument, "createUVs of a solid must be 0 to 4, not {}",
                options.createUVs);
  const Shape shape = shapeOf(options.solid);
  PrimitiveBuilder builder;
  for (const Vec3& point : shape.points) builder.addPoint(point * options.radius);
  std::vector<std::vector<UvId>> uvs(shape.faces.size());
  if (options.createUVs != 0) uvs = addUvs(builder, shape, options.createUVs, options.radius);
  std::set<std::pair<Index, Index>> known;
  for (const std::vector<VertexId>& face : shape.faces)
    for (std::size_t k = 0; k < face.size(); ++k) {
      const VertexId a = face[k], b = face[(k + 1) % face.size()];
      if (known.emplace(std::min<Index>(a, b), std::max<Index>(a, b)).second)
        builder.addEdge(a, b, false);
    }
  for (std::size_t face = 0; face < shape.faces.size(); ++face)
    builder.addFace(shape.faces[face], uvs[face]);
  return std::move(builder).finish(options.axis);
}

}  // namespace host::ops
