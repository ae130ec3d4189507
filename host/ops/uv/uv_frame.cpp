#include "host/ops/uv/uv_frame.h"

#include <algorithm>
#include <array>
#include <numbers>
#include <numeric>

namespace host::ops {
namespace {

using flat::Point;
using Corners = std::array<std::size_t, 4>;

/// How far the line turns to the left at each point, radians.
std::vector<double> turnsOf(std::span<const Point> places) {
  const std::size_t count = places.size();
  std::vector<double> turns(count);
  for (std::size_t i = 0; i < count; ++i) {
    const Point in = places[i] - places[(i + count - 1) % count];
    const Point out = places[(i + 1) % count] - places[i];
    turns[i] = std::atan2(flat::cross(in, out), flat::dot(in, out));
  }
  return turns;
}

/// The four corners that turn most, given the first: in each quarter that follows, the point that
/// turns most within an eighth of the way around.
Corners cornersFrom(std::size_t first, std::span<const double> turns, std::span<const double> along,
                    double around, double& sum) {
  const std::size_t count = turns.size();
  const auto from = [&](std::size_t i) {
    const double way = along[i] - along[first];
    return way < 0 ? way + around : way;
  };
  Corners corners{first, first, first, first};
  sum = turns[first];
  std::size_t i = (first + 1) % count;
  for (std::size_t quarter = 1; quarter < 4; ++quarter) {
    const double wanted = 0.25 * static_cast<double>(quarter) * around;
    double best = -1e300;
    for (; i != first && from(i) <= wanted + around / 8; i = (i + 1) % count) {
      if (from(i) < wanted - around / 8) continue;
      // Of points that turn alike, the one nearest to the quarter.
      const double score = turns[i] - 0.5 * std::abs(from(i) - wanted) / around;
      if (score <= best) continue;
      best = score;
      corners[quarter] = i;
    }
    if (best == -1e300) return corners;  // no point there: the corner stays empty
    sum += best;
  }
  return corners;
}

}  // namespace

std::vector<Point> onCircle(std::span<const Point> places, std::span<const double> along,
                            double around) {
  const Point first = places[0] - Point{0.5, 0.5};
  const double start = std::atan2(first.y, first.x);
  std::vector<Point> found;
  for (const double way : along) {
    const double angle = start + 2 * std::numbers::pi * way / around;
    found.push_back({0.5 + 0.5 * std::cos(angle), 0.5 + 0.5 * std::sin(angle)});
  }
  return found;
}

std::vector<Point> onSquare(std::span<const Point> places, std::span<const double> along,
                            double around) {
  constexpr std::size_t kTried = 32;
  const std::size_t count = places.size();
  const std::vector<double> turns = turnsOf(places);
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return turns[a] > turns[b]; });
  Corners corners{};
  double most = -1e300;
  for (std::size_t k = 0; k < std::min(count, kTried); ++k) {
    double sum = 0;
    const Corners tried = cornersFrom(order[k], turns, along, around, sum);
    const bool isWhole = tried[1] != tried[0] && tried[2] != tried[0] && tried[3] != tried[0];
    if (isWhole && sum > most) {
      most = sum;
      corners = tried;
    }
  }
  constexpr std::array<Point, 4> kFrame{Point{1, 1}, Point{0, 1}, Point{0, 0}, Point{1, 0}};
  std::vector<Point> found(count);
  if (most == -1e300) {
    // Too few points for corners: evenly, from the first one's side on.
    const std::vector<Point> round = onCircle(places, along, around);
    for (std::size_t i = 0; i < count; ++i) {
      const Point arm = round[i] - Point{0.5, 0.5};
      const double reach = 0.5 / std::max(std::abs(arm.x), std::abs(arm.y));
      found[i] = Point{0.5, 0.5} + reach * arm;
    }
    return found;
  }
  // The first corner goes to the one of the square that it lies nearest to.
  std::size_t side = 0;
  for (std::size_t k = 1; k < 4; ++k)
    if (flat::length(places[corners[0]] - kFrame[k]) <
        flat::length(places[corners[0]] - kFrame[side]))
      side = k;
  for (std::size_t quarter = 0; quarter < 4; ++quarter) {
    const std::size_t begin = corners[quarter], end = corners[(quarter + 1) % 4];
    const auto way = [&](std::size_t i) {
      const double length = along[i] - along[begin];
      return length < 0 ? length + around : length;
    };
    const Point a = kFrame[(side + quarter) % 4], b = kFrame[(side + quarter + 1) % 4];
    const double length = std::max(way(end), 1e-300);
    for (std::size_t i = begin; i != end; i = (i + 1) % count)
      found[i] = a + way(i) / length * (b - a);
  }
  return found;
}

}  // namespace host::ops
