#include "host/ops/topology/bevel_patch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace host::ops {
namespace {

using math::Vec3;

/// A sphere that the rim lies on or near.
struct Ball {
  Vec3 center;
  double radius = 0;
  [[nodiscard]] double above(const Vec3& p) const { return math::distance(p, center) - radius; }
};

using Row = std::array<double, 5>;

/// Solves four equations by elimination; nothing where they hang on each other.
std::optional<std::array<double, 4>> solve(std::array<Row, 4> rows) {
  constexpr double kLeastPivot = 1e-9;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto best = std::max_element(
        rows.begin() + static_cast<std::ptrdiff_t>(i), rows.end(),
        [i](const Row& a, const Row& b) { return std::abs(a[i]) < std::abs(b[i]); });
    std::swap(rows[i], *best);
    if (std::abs(rows[i][i]) < kLeastPivot) return std::nullopt;
    for (std::size_t j = 0; j < 4; ++j) {
      if (j == i) continue;
      const double factor = rows[j][i] / rows[i][i];
      for (std::size_t k = i; k < 5; ++k) rows[j][k] -= factor * rows[i][k];
    }
  }
  std::array<double, 4> found{};
  for (std::size_t i = 0; i < 4; ++i) found[i] = rows[i][4] / rows[i][i];
  return found;
}

/// The sphere nearest to points by the least squares of |p|^2 = 2 p.c + (r^2 - |c|^2); nothing for
/// points in a plane, and none that has them on more than the half that faces them.
std::optional<Ball> ballThrough(std::span<const Vec3> points) {
  Vec3 mean;
  for (const Vec3& p : points) mean += p / static_cast<double>(points.size());
  double size = 0;
  for (const Vec3& p : points) size = std::max(size, math::distance(p, mean));
  if (!(size > 0)) return std::nullopt;
  std::array<Row, 4> rows{};
  for (const Vec3& point : points) {
    const Vec3 p = (point - mean) / size;
    const Row row{2 * p.x, 2 * p.y, 2 * p.z, 1, math::lengthSquared(p)};
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t k = 0; k < 5; ++k) rows[i][k] += row[i] * row[k];
  }
  const auto found = solve(rows);
  if (!found) return std::nullopt;
  const Vec3 center{(*found)[0], (*found)[1], (*found)[2]};
  const double squared = (*found)[3] + math::lengthSquared(center);
  constexpr double kMostRadius = 1e4, kLeastCosine = 0.2;
  if (!(squared > 0) || squared > kMostRadius * kMostRadius) return std::nullopt;
  const Vec3 axis = math::normalized(-center);
  for (const Vec3& point : points)
    if (math::dot(math::normalized((point - mean) / size - center), axis) < kLeastCosine)
      return std::nullopt;
  return Ball{mean + center * size, std::sqrt(squared) * size};
}

/// A value on one corner's part of the patch, between those along its four sides.
template <class Value>
struct CornerPart {
  Value corner, endOfFirst, endOfSecond, middle;

  [[nodiscard]] Value at(double u, double v, const Value& onFirst, const Value& onSecond) const {
    const Value acrossFirst = endOfSecond * (1 - u) + middle * u;
    const Value acrossSecond = endOfFirst * (1 - v) + middle * v;
    const Value bilinear = corner * ((1 - u) * (1 - v)) + endOfFirst * (u * (1 - v)) +
                           endOfSecond * ((1 - u) * v) + middle * (u * v);
    return onFirst * (1 - v) + acrossFirst * v + onSecond * (1 - u) + acrossSecond * u - bilinear;
  }
};

}  // namespace

Vec3 BevelArc::at(double share, double roundness) const {
  const double t = share, s = 1 - t;
  const double cosine = math::dot(math::normalized(from - corner), math::normalized(to - corner));
  const double weight = std::sqrt(std::max(0.0, 0.5 * (1 - cosine)));
  const double sum = s * s + 2 * s * t * weight + t * t;
  const Vec3 arc = (from * (s * s) + corner * (2 * s * t * weight) + to * (t * t)) / sum;
  const Vec3 flat = from * s + to * t;
  return flat + (arc - flat) * roundness;
}

Index BevelPatch::insideCount() const {
  const Index h = half();
  return isEven() ? sides_ * h * (h - 1) + 1 : sides_ * h * h;
}

// A sector's part is a grid from its corner on: p steps along the rim, q back along the rim before.
// With an even number of segments the parts share their far sides.
VertexId BevelPatch::node(int sector, int p, int q, std::span<const VertexId> rim,
                          VertexId firstInside) const {
  const int around = sides_ * segments_, h = half();
  const int i = (sector + sides_) % sides_;
  if (q == 0) return rim[at((i * segments_ + p) % around)];
  if (p == 0) return rim[at((i * segments_ - q + around) % around)];
  if (!isEven()) return firstInside + i * h * h + (p - 1) * h + (q - 1);
  if (p == h && q == h) return firstInside + sides_ * h * (h - 1);
  if (q == h) return node(i - 1, h, p, rim, firstInside);
  return firstInside + i * h * (h - 1) + (p - 1) * (h - 1) + (q - 1);
}

std::vector<std::vector<VertexId>> BevelPatch::faces(std::span<const VertexId> rim,
                                                     VertexId firstInside) const {
  const auto at = [&](int i, int p, int q) { return node(i, p, q, rim, firstInside); };
  std::vector<std::vector<VertexId>> made;
  const int h = half();
  for (int i = 0; i < sides_; ++i) {
    for (int p = 0; p < h; ++p)
      for (int q = 0; q < h; ++q)
        made.push_back({at(i, p, q), at(i, p + 1, q), at(i, p + 1, q + 1), at(i, p, q + 1)});
    if (isEven()) continue;
    for (int q = 0; q < h; ++q)
      made.push_back({at(i, h, q), at(i + 1, q, h), at(i + 1, q + 1, h), at(i, h, q + 1)});
  }
  if (isEven()) return made;
  made.emplace_back();
  for (int i = 0; i < sides_; ++i) made.back().push_back(at(i, h, h));
  return made;
}

std::vector<Vec3> BevelPatch::places(std::span<const BevelArc> arcs, double roundness) const {
  std::vector<Vec3> made = roundPlaces(arcs, 1);
  if (roundness >= 1) return made;
  const std::vector<Vec3> flat = roundPlaces(arcs, 0);
  for (std::size_t i = 0; i < made.size(); ++i) made[i] = flat[i] + (made[i] - flat[i]) * roundness;
  return made;
}

std::vector<Vec3> BevelPatch::roundPlaces(std::span<const BevelArc> arcs, double roundness) const {
  const auto count = arcs.size();
  std::vector<Vec3> known;  // corners and middles of the sides
  for (const BevelArc& arc : arcs) {
    known.push_back(arc.from);
    known.push_back(arc.at(0.5, roundness));
  }
  const std::optional<Ball> ball = ballThrough(known);
  const auto above = [&](const Vec3& p) { return ball ? ball->above(p) : 0; };
  Vec3 middle;
  double middleAbove = 0;
  for (std::size_t i = 0; i < count; ++i) {
    middle += known[2 * i + 1] / static_cast<double>(count);
    middleAbove += above(known[2 * i + 1]) / static_cast<double>(count);
  }
  const int h = half(), rows = isEven() ? h - 1 : h;
  std::vector<Vec3> made;
  const auto add = [&](const Vec3& p, double height) {
    made.push_back(
        ball ? ball->center + math::normalized(p - ball->center) * (ball->radius + height) : p);
  };
  for (std::size_t i = 0; i < count; ++i) {
    const BevelArc &first = arcs[i], &second = arcs[(i + count - 1) % count];
    const Vec3 ends[] = {known[2 * i + 1], known[2 * ((i + count - 1) % count) + 1]};
    const CornerPart<Vec3> place{first.from, ends[0], ends[1], middle};
    const CornerPart<double> height{above(first.from), above(ends[0]), above(ends[1]), middleAbove};
    for (int p = 1; p <= h; ++p)
      for (int q = 1; q <= rows; ++q) {
        const double u = 2.0 * p / segments_, v = 2.0 * q / segments_;
        const Vec3 a = first.at(u / 2, roundness), b = second.at(1 - v / 2, roundness);
        add(place.at(u, v, a, b), height.at(u, v, above(a), above(b)));
      }
  }
  if (isEven()) add(middle, middleAbove);
  return made;
}

}  // namespace host::ops
