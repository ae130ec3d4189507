#include "host/ops/uv/unfold_start.h"

#include <Eigen/SparseCholesky>
#include <algorithm>
#include <numbers>

namespace host::ops::flat {
namespace {

/// The border rings of those vertices that are in, the one with the longest way around first.
std::vector<std::vector<Index>> ringsOf(const Border& border, std::span<const math::Vec3> points) {
  std::vector<std::vector<Index>> rings;
  std::vector<double> lengths;
  std::vector<bool> isDone(border.next.size(), false);
  for (std::size_t first = 0; first < isDone.size(); ++first) {
    if (isDone[first] || border.next[first] == kNone) continue;
    std::vector<Index> ring;
    double around = 0;
    for (Index v = static_cast<Index>(first); !isDone[at(v)]; v = border.next[at(v)]) {
      isDone[at(v)] = true;
      ring.push_back(v);
      around += math::distance(points[at(v)], points[at(border.next[at(v)])]);
    }
    rings.push_back(std::move(ring));
    lengths.push_back(around);
  }
  if (rings.empty()) return rings;
  const auto longest = std::max_element(lengths.begin(), lengths.end()) - lengths.begin();
  std::swap(rings[0], rings[static_cast<std::size_t>(longest)]);
  return rings;
}

bool allPositive(const Hierarchy& h, std::span<const Point> x) {
  for (std::size_t t = 0; t < h.triangles.size(); ++t) {
    const Triangle& c = h.triangles[t];
    if (h.isAlive[t] && orientation(x[at(c[0])], x[at(c[1])], x[at(c[2])]) <= 0) return false;
  }
  return true;
}

}  // namespace

std::vector<Point> circleLayout(const Hierarchy& h, std::span<const math::Vec3> points) {
  const std::vector<std::vector<Index>> rings = ringsOf(h.border, points);
  if (rings.empty()) return {};
  std::vector<Point> x(points.size());
  std::vector<Index> unknownOf(points.size(), kNone);
  double around = 0;
  std::vector<double> along;
  for (const Index v : rings[0]) {
    along.push_back(around);
    // Halfway between even and true distances, so that no two come too near each other.
    around += math::distance(points[at(v)], points[at(h.border.next[at(v)])]);
  }
  const auto count = static_cast<double>(rings[0].size());
  for (std::size_t i = 0; i < rings[0].size(); ++i) {
    const double part =
        0.5 * static_cast<double>(i) / count +
        (around > 0 ? 0.5 * along[i] / around : 0.5 * static_cast<double>(i) / count);
    const double angle = 2 * std::numbers::pi * part;
    x[at(rings[0][i])] = {std::cos(angle), std::sin(angle)};
  }
  Index unknowns = 0;
  std::vector<bool> isOuter(points.size(), false);
  for (const Index v : rings[0]) isOuter[at(v)] = true;
  for (std::size_t v = 0; v < points.size(); ++v)
    if (h.isIn[v] && !isOuter[v]) unknownOf[v] = unknowns++;
  const Index fillers = static_cast<Index>(rings.size()) - 1;
  const Index total = unknowns + fillers;
  if (total > 0) {
    std::vector<Eigen::Triplet<double>> triplets;
    Eigen::MatrixX2d right = Eigen::MatrixX2d::Zero(total, 2);
    const auto pull = [&](Index u, Index w, const Point* fixed) {
      triplets.emplace_back(u, u, 1.0);
      if (fixed)
        right.row(u) += Eigen::RowVector2d(fixed->x, fixed->y);
      else if (w < u)
        triplets.emplace_back(u, w, -1.0);
    };
    const auto link = [&](Index v, Index w) {
      const Index a = unknownOf[at(v)], b = unknownOf[at(w)];
      if (a != kNone) pull(a, b, b == kNone ? &x[at(w)] : nullptr);
      if (b != kNone) pull(b, a, a == kNone ? &x[at(v)] : nullptr);
    };
    for (std::size_t t = 0; t < h.triangles.size(); ++t)
      for (std::size_t k = 0; h.isAlive[t] && k < 3; ++k) {
        const Index v = h.triangles[t][k], w = h.triangles[t][(k + 1) % 3];
        // Inner edges come once from each side; one of them counts.
        if (v < w || h.border.next[at(v)] == w) link(v, w);
      }
    for (Index f = 0; f < fillers; ++f)
      for (const Index v : rings[at(f) + 1]) {
        pull(unknowns + f, unknownOf[at(v)], nullptr);
        pull(unknownOf[at(v)], unknowns + f, nullptr);
      }
    Eigen::SparseMatrix<double> matrix(total, total);
    matrix.setFromTriplets(triplets.begin(), triplets.end());
    Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> factor(matrix);
    if (factor.info() != Eigen::Success) return {};
    const Eigen::MatrixX2d solution = factor.solve(right);
    for (std::size_t v = 0; v < points.size(); ++v)
      if (const Index u = unknownOf[v]; u != kNone) x[v] = {solution(u, 0), solution(u, 1)};
  }
  if (!allPositive(h, x) || !BorderGuard(h.border, x).isSimple()) return {};
  return x;
}

namespace {

/// A place in proportion to where the vertex is at rest: inside by mean values (Floater 2003), on
/// the border by its distances along and from the line between its neighbours.
Point proportionalPlace(const Hierarchy& h, const Collapse& c, std::span<const math::Vec3> points,
                        std::span<const Point> x) {
  const Index v = c.removed;
  if (c.borderNext != kNone) {
    const math::Vec3 from = points[at(c.borderPrevious)], to = points[at(c.borderNext)];
    const math::Vec3 line = to - from, arm = points[at(v)] - from;
    const double square = std::max(math::lengthSquared(line), 1e-300);
    const double part = std::clamp(math::dot(arm, line) / square, 0.05, 0.95);
    const double off = math::length(math::cross(line, arm)) / square;
    double angle = 0;
    for (Index i = c.firstTouched; i < c.touchedEnd; ++i) {
      const Triangle& t = h.triangles[at(h.touched[at(i)])];
      const std::size_t k = t[0] == v ? 0 : t[1] == v ? 1 : 2;
      const math::Vec3 p = points[at(t[(k + 1) % 3])] - points[at(v)];
      const math::Vec3 q = points[at(t[(k + 2) % 3])] - points[at(v)];
      angle += std::atan2(math::length(math::cross(p, q)), math::dot(p, q));
    }
    const Point a = x[at(c.borderPrevious)], along = x[at(c.borderNext)] - a;
    const Point outward{along.y, -along.x};  // the surface lies on the left
    return a + part * along + (angle < std::numbers::pi ? off : -off) * outward;
  }
  Point sum;
  double weights = 0;
  for (Index i = c.firstTouched; i < c.touchedEnd; ++i) {
    const Triangle& t = h.triangles[at(h.touched[at(i)])];
    const std::size_t k = t[0] == v ? 0 : t[1] == v ? 1 : 2;
    const Index p = t[(k + 1) % 3], q = t[(k + 2) % 3];
    const math::Vec3 a = points[at(p)] - points[at(v)], b = points[at(q)] - points[at(v)];
    const double la = std::max(math::length(a), 1e-150), lb = std::max(math::length(b), 1e-150);
    const double half =
        std::tan(0.5 * std::atan2(math::length(math::cross(a, b)), math::dot(a, b)));
    sum = sum + half / la * x[at(p)] + half / lb * x[at(q)];
    weights += half / la + half / lb;
  }
  return weights > 0 ? 1 / weights * sum : x[at(c.kept)];
}

/// From the kept vertex along the middle of the fan that the removed one takes over: there, near
/// enough, all triangles are positive and the border stays where the surface was.
Point openingDirection(const Hierarchy& h, const Collapse& c, std::span<const Point> x) {
  const Point kept = x[at(c.kept)];
  double angle = 0;
  for (Index i = c.firstTouched; i < c.survivorEnd; ++i) {
    const Triangle& t = h.triangles[at(h.touched[at(i)])];
    const std::size_t k = t[0] == c.removed ? 0 : t[1] == c.removed ? 1 : 2;
    const Point p = x[at(t[(k + 1) % 3])] - kept, q = x[at(t[(k + 2) % 3])] - kept;
    angle += std::atan2(cross(p, q), dot(p, q));
  }
  if (c.survivorEnd == c.touchedEnd) return {};
  const Triangle& t = h.triangles[at(h.touched[at(c.survivorEnd)])];
  const std::size_t k = t[0] == c.kept ? 0 : t[1] == c.kept ? 1 : 2;
  const bool isAfter = t[(k + 2) % 3] == c.removed;  // counter-clockwise of the tip
  const Point arm = x[at(isAfter ? t[(k + 1) % 3] : t[(k + 2) % 3])] - kept;
  const double half = isAfter ? 0.5 * angle : -0.5 * angle, size = std::max(length(arm), 1e-300);
  const double cosine = std::cos(half) / size, sine = std::sin(half) / size;
  return {cosine * arm.x - sine * arm.y, sine * arm.x + cosine * arm.y};
}

}  // namespace

bool placeBack(const Hierarchy& h, const Collapse& c, std::span<const math::Vec3> points,
               const BorderGuard& guard, std::vector<Point>& x) {
  const Index v = c.removed;
  const Point kept = x[at(c.kept)];
  const auto fits = [&](Point place) {
    x[at(v)] = place;
    for (Index i = c.firstTouched; i < c.touchedEnd; ++i) {
      const Triangle& t = h.triangles[at(h.touched[at(i)])];
      if (orientation(x[at(t[0])], x[at(t[1])], x[at(t[2])]) <= 0) return false;
    }
    return c.borderNext == kNone || guard.allows(v, place);
  };
  const Point wanted = proportionalPlace(h, c, points, x);
  for (double part = 1; part > 0.1; part *= 0.5)
    if (fits(kept + part * (wanted - kept))) return true;
  double reach = 0;
  for (Index i = c.firstTouched; i < c.touchedEnd; ++i)
    for (const Index n : h.triangles[at(h.touched[at(i)])])
      if (n != v) reach = std::max(reach, length(x[at(n)] - kept));
  const Point inward = openingDirection(h, c, x);
  Point aside{};
  if (c.borderNext != kNone) {
    const Index far = c.borderNext == c.kept ? c.borderPrevious : c.borderNext;
    aside = 1 / std::max(length(x[at(far)] - kept), 1e-300) * (x[at(far)] - kept);
  }
  for (double part = 0.5; part > 1e-13; part *= 0.5)
    for (const Point direction : {inward + aside, aside, inward})
      if (direction != Point{} && fits(kept + part * reach * direction)) return true;
  return false;
}

}  // namespace host::ops::flat
