#include "host/ops/boolean/exact_points.h"

#include <cmath>

namespace host::ops {

namespace {

std::uint64_t mix(std::uint64_t x, std::uint64_t y, std::uint64_t z) {
  std::uint64_t hash = x * 0x9E3779B97F4A7C15ULL;
  hash = (hash ^ (hash >> 29U) ^ y) * 0xBF58476D1CE4E5B9ULL;
  hash = (hash ^ (hash >> 32U) ^ z) * 0x94D049BB133111EBULL;
  return hash ^ (hash >> 31U);
}

std::uint64_t hashOf(const GridPoint& point) {
  const auto part = [&](std::size_t i) { return ExactInteger(point[i]).remainder(); };
  return mix(part(0), part(1), part(2));
}

double quotient(const ExactInteger& over, const ExactInteger& under) {
  int up = 0, down = 0;
  const double a = over.fraction(up), b = under.fraction(down);
  return std::ldexp(a / b, up - down);
}

ExactInteger dot(const std::array<ExactInteger, 3>& a, const std::array<ExactInteger, 3>& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

std::array<ExactInteger, 3> cross(const std::array<ExactInteger, 3>& a,
                                  const std::array<ExactInteger, 3>& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

}  // namespace

GridVector gridNormal(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
  Int128 u[3], v[3];
  for (std::size_t i = 0; i < 3; ++i) {
    u[i] = b[i] - a[i];
    v[i] = c[i] - a[i];
  }
  return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

Int128 orient3d(const GridPoint& a, const GridPoint& b, const GridPoint& c, const GridPoint& d) {
  const GridVector n = gridNormal(a, b, c);
  return n[0] * (d[0] - a[0]) + n[1] * (d[1] - a[1]) + n[2] * (d[2] - a[2]);
}

Int128 orient2d(const GridPoint& a, const GridPoint& b, const GridPoint& c, int axis) {
  const auto i = at((axis + 1) % 3), j = at((axis + 2) % 3);
  return Int128{b[i] - a[i]} * (c[j] - a[j]) - Int128{b[j] - a[j]} * (c[i] - a[i]);
}

ExactPlane planeThrough(const GridPoint& a, const std::array<ExactInteger, 3>& normal) {
  return {normal, dot(normal, {ExactInteger(a[0]), ExactInteger(a[1]), ExactInteger(a[2])})};
}

ExactPoint commonPoint(const ExactPlane& a, const ExactPlane& b, const ExactPlane& c) {
  const auto bc = cross(b.n, c.n), ca = cross(c.n, a.n), ab = cross(a.n, b.n);
  ExactPoint point;
  point.w = dot(a.n, bc);
  const bool turned = point.w.sign() < 0;
  for (std::size_t i = 0; i < 3; ++i) {
    point.x[i] = a.d * bc[i] + b.d * ca[i] + c.d * ab[i];
    if (turned) point.x[i] = -point.x[i];
  }
  if (turned) point.w = -point.w;
  return point;
}

Result<void> ExactPoints::setVertices(std::span<const math::Vec3f> vertices) {
  double largest = 0;
  for (const math::Vec3f& v : vertices)
    for (const float value : {v.x, v.y, v.z}) {
      if (!std::isfinite(value))
        return fail(ErrorKind::BadArgument, "A vertex has a coordinate that is not finite");
      largest = std::max(largest, std::abs(static_cast<double>(value)));
    }
  int exponent = 0;
  if (largest > 0) std::frexp(largest, &exponent);
  scale_ = std::ldexp(1.0, 30 - exponent);
  vertexPoints_.reserve(vertices.size());
  byHash_.reserve(vertices.size());
  for (const math::Vec3f& v : vertices) {
    const GridPoint point{std::llround(v.x * scale_), std::llround(v.y * scale_),
                          std::llround(v.z * scale_)};
    const std::uint64_t hash = ops::hashOf(point);
    PointId id = kNone;
    for (auto [i, end] = byHash_.equal_range(hash); i != end && id == kNone; ++i)
      if (grid_[at(i->second)] == point) id = i->second;
    if (id == kNone) {
      id = static_cast<PointId>(grid_.size());
      grid_.push_back(point);
      near_.push_back({static_cast<double>(point[0]), static_cast<double>(point[1]),
                       static_cast<double>(point[2])});
      byHash_.emplace(hash, id);
    }
    vertexPoints_.push_back(id);
  }
  return {};
}

PointId ExactPoints::onEdge(PointId a, PointId b, Int128 atA, Int128 atB) {
  if (atA < 0) {
    atA = -atA;
    atB = -atB;
  }
  const GridPoint &from = grid(a), &to = grid(b);
  const ExactInteger nearA(atA), nearB(-atB);
  ExactPoint point;
  point.w = nearA + nearB;
  for (std::size_t i = 0; i < 3; ++i)
    point.x[i] = ExactInteger(to[i]) * nearA + ExactInteger(from[i]) * nearB;
  return add(std::move(point));
}

PointId ExactPoints::add(ExactPoint point) {
  const std::uint64_t hash = hashOf(point);
  for (auto [i, end] = byHash_.equal_range(hash); i != end; ++i)
    if (isSame(point, i->second)) return i->second;
  const auto id = static_cast<PointId>(size());
  near_.push_back({quotient(point.x[0], point.w), quotient(point.x[1], point.w),
                   quotient(point.x[2], point.w)});
  made_.push_back(std::move(point));
  byHash_.emplace(hash, id);
  return id;
}

ExactPoint ExactPoints::exact(PointId p) const {
  if (!isGridPoint(p)) return made_[at(p) - grid_.size()];
  const GridPoint& point = grid(p);
  return {{ExactInteger(point[0]), ExactInteger(point[1]), ExactInteger(point[2])},
          ExactInteger(1)};
}

std::uint64_t ExactPoints::hashOf(const ExactPoint& point) const {
  const std::uint64_t inverse = moduloInverse(point.w.remainder());
  const auto part = [&](std::size_t i) { return moduloProduct(point.x[i].remainder(), inverse); };
  return mix(part(0), part(1), part(2));
}

bool ExactPoints::isSame(const ExactPoint& point, PointId id) const {
  const ExactPoint other = exact(id);
  for (std::size_t i = 0; i < 3; ++i)
    if (!(point.x[i] * other.w == other.x[i] * point.w)) return false;
  return true;
}

int ExactPoints::turn(PointId a, PointId b, PointId c, int axis) const {
  if (isGridPoint(a) && isGridPoint(b) && isGridPoint(c))
    return signOf(orient2d(grid(a), grid(b), grid(c), axis));
  const int i = (axis + 1) % 3, j = (axis + 2) % 3;
  const math::Vec3 &p = near_[at(a)], &q = near_[at(b)], &r = near_[at(c)];
  const double ux = q[i] - p[i], uy = q[j] - p[j], vx = r[i] - p[i], vy = r[j] - p[j];
  const double area = ux * vy - uy * vx;
  // Coordinates stay below 2^30 and are right to a few 2^-23 of a unit.
  const double reach = std::abs(ux) + std::abs(uy) + std::abs(vx) + std::abs(vy) + 1;
  if (std::abs(area) > 1e-5 * reach) return area > 0 ? 1 : -1;
  const ExactPoint e[3] = {exact(a), exact(b), exact(c)};
  const auto x = [&](int k) -> const ExactInteger& { return e[k].x[at(i)]; };
  const auto y = [&](int k) -> const ExactInteger& { return e[k].x[at(j)]; };
  const ExactInteger sum = e[0].w * (x(1) * y(2) - y(1) * x(2)) +
                           e[1].w * (x(2) * y(0) - y(2) * x(0)) +
                           e[2].w * (x(0) * y(1) - y(0) * x(1));
  return sum.sign();
}

int ExactPoints::compare(PointId a, PointId b, int axis) const {
  const double step = near_[at(b)][axis] - near_[at(a)][axis];
  if (std::abs(step) > 1e-5) return step > 0 ? -1 : 1;
  const ExactPoint p = exact(a), q = exact(b);
  const auto i = at(axis);
  return (p.x[i] * q.w - q.x[i] * p.w).sign();
}

bool ExactPoints::isBetween(PointId p, PointId a, PointId b) const {
  for (int axis = 0; axis < 3; ++axis) {
    const int order = compare(a, b, axis);
    if (order != 0) return compare(a, p, axis) == order && compare(p, b, axis) == order;
  }
  return false;
}

bool ExactPoints::comesBefore(PointId p, PointId q, PointId a, PointId b) const {
  for (int axis = 0; axis < 3; ++axis) {
    const int order = compare(a, b, axis);
    if (order != 0) return compare(p, q, axis) == order;
  }
  return false;
}

}  // namespace host::ops
