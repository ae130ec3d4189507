#include "host/ops/uv/layout_trial.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/base/cancel.h"
#include "host/base/parallel.h"

namespace host::ops::flat {
namespace {

constexpr std::size_t kMostKept = 12000;  ///< shapes whose masks are kept: some 30 MB

/// Whether two masks differ in a few rim cells only, as those of a disc or a turned rectangle do.
bool isAlike(const CellMask& a, const CellMask& b) {
  if (a.width != b.width || a.height != b.height || a.runs.size() != b.runs.size() ||
      a.rowStart != b.rowStart)
    return false;
  std::int64_t cells = 0, other = 0;
  for (std::size_t i = 0; i < a.runs.size(); ++i) {
    cells += a.runs[i].end - a.runs[i].begin;
    other += std::abs(a.runs[i].begin - b.runs[i].begin) + std::abs(a.runs[i].end - b.runs[i].end);
  }
  return other * 33 <= cells;
}

struct Choice {
  const TurnedMask* turned = nullptr;
  Board::Place place;
  double score = 1e300;
};

/// Prefers low places, and among those near each other the one that lies closest against what is
/// there: it wastes less.
void consider(const Board& board, const TurnedMask& turned, std::vector<Board::Place>& places,
              Choice& best) {
  constexpr double kBand = 0.15;  ///< of the mask's height
  const CellMask& mask = turned.mask;
  places.clear();
  board.places(mask, static_cast<std::int32_t>(kBand * mask.height),
               static_cast<std::int32_t>(std::min(best.score, 1e9)) + 1, places);
  for (const Board::Place place : places) {
    if (place.y >= best.score) continue;
    const double loose = 1 - board.contact(mask, place);
    const double score = place.y + 1.5 * mask.height * loose * std::sqrt(loose);
    if (score >= best.score) continue;
    best = {&turned, place, score};
  }
}

}  // namespace

ShapeMasks::ShapeMasks(std::span<const PackShape> shapes, std::span<const std::vector<Point>> turns,
                       double scale, double cell, bool asBoxes)
    : shapes_(shapes), turns_(turns), scale_(scale), cell_(cell), asBoxes_(asBoxes) {
  if (shapes.size() > kMostKept) return;
  kept_.resize(shapes.size());
  parallelFor(shapes.size(), 16, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) kept_[i] = make(i);
  });
}

std::span<const TurnedMask> ShapeMasks::of(std::size_t shape,
                                           std::vector<TurnedMask>& scratch) const {
  if (!kept_.empty()) return kept_[shape];
  scratch = make(shape);
  return scratch;
}

std::vector<TurnedMask> ShapeMasks::make(std::size_t shape) const {
  std::vector<TurnedMask> made;
  std::vector<std::array<Point, 3>> triangles;
  for (const Point turn : turns_[shape]) {
    const PackPlace place{turn, {}};
    triangles.clear();
    Point low{1e300, 1e300}, high{-1e300, -1e300};
    for (const auto& t : shapes_[shape].triangles) {
      triangles.push_back({place.at(t[0], scale_), place.at(t[1], scale_), place.at(t[2], scale_)});
      for (const Point& p : triangles.back()) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
      }
    }
    if (asBoxes_) triangles = {{low, {high.x, low.y}, high}, {low, high, {low.x, high.y}}};
    TurnedMask turned{turn, touchedCells(triangles, cell_)};
    if (std::ranges::none_of(
            made, [&](const TurnedMask& other) { return isAlike(other.mask, turned.mask); }))
      made.push_back(std::move(turned));
  }
  return made;
}

std::optional<Trial> tryOrder(Board board, const ShapeMasks& masks,
                              std::span<const std::size_t> order, double cell, std::int32_t limit) {
  Trial trial;
  trial.order.assign(order.begin(), order.end());
  trial.places.resize(order.size());
  std::vector<std::int32_t> tops(at(board.width()), 0);
  std::vector<TurnedMask> scratch;
  std::vector<Board::Place> places;
  for (const std::size_t i : order) {
    if (isCancelled()) return std::nullopt;
    Choice best;
    for (const TurnedMask& turned : masks.of(i, scratch)) consider(board, turned, places, best);
    if (!best.turned) return std::nullopt;
    const CellMask& mask = best.turned->mask;
    const std::int32_t top = best.place.y + mask.height;
    trial.top = std::max(trial.top, top + board.gutter());
    if (trial.top > limit) return std::nullopt;
    board.take(mask, best.place);
    for (std::int32_t x = best.place.x; x < best.place.x + mask.width; ++x) {
      std::int32_t& highest = tops[at(x)];
      highest = std::max(highest, top);
    }
    trial.places[i] = {best.turned->turn,
                       {best.place.x * cell - mask.origin.x, best.place.y * cell - mask.origin.y}};
  }
  trial.skyline = std::accumulate(tops.begin(), tops.end(), 0.0) / board.width();
  return trial;
}

std::vector<std::size_t> shuffled(std::span<const std::size_t> order, std::uint32_t seed) {
  std::uint32_t state = seed * 7919u + 1u;
  const auto next = [&state] {
    state = state * 1664525u + 1013904223u;
    return static_cast<double>(state >> 8) / 16777216.0;
  };
  // A dozenth of the shapes move by up to a third of the order, rather forward than back.
  const auto count = static_cast<double>(order.size());
  std::vector<double> keys(order.size());
  std::iota(keys.begin(), keys.end(), 0.0);
  const auto moved = static_cast<std::size_t>(1 + next() * count / 12);
  for (std::size_t k = 0; k < moved; ++k) {
    const auto which = static_cast<std::size_t>(next() * count);
    keys[which] += (next() - 0.6) * count / 3;
  }
  std::vector<std::size_t> ranks(order.size());
  std::iota(ranks.begin(), ranks.end(), std::size_t{0});
  std::stable_sort(ranks.begin(), ranks.end(),
                   [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  std::vector<std::size_t> result;
  result.reserve(order.size());
  for (const std::size_t rank : ranks) result.push_back(order[rank]);
  return result;
}

}  // namespace host::ops::flat
