#include "host/ops/uv/unfold_border.h"

#include <algorithm>
#include <bit>

namespace host::ops::flat {
namespace {

/// Whether two edges out of one point lie on each other.
bool foldsBack(Point shared, Point a, Point b) {
  return orientation(shared, a, b) == 0 && dot(a - shared, b - shared) > 0;
}

}  // namespace

BorderGuard::BorderGuard(const Border& border, std::span<const Point> x) : border_(border), x_(x) {
  double sum = 0;
  std::size_t edges = 0;
  Point low{1e300, 1e300}, high{-1e300, -1e300};
  for (std::size_t v = 0; v < x.size(); ++v) {
    if (border.next[v] == kNone) continue;
    sum += length(x[at(border.next[v])] - x[v]);
    ++edges;
    low = {std::min(low.x, x[v].x), std::min(low.y, x[v].y)};
    high = {std::max(high.x, x[v].x), std::max(high.y, x[v].y)};
  }
  if (edges == 0) return;
  const double extent = std::max({high.x - low.x, high.y - low.y, 1e-300});
  const double cell = std::max(1.5 * sum / static_cast<double>(edges), extent / 1024);
  perCell_ = 1 / cell;
  air_ = std::max(1e-3 * sum / static_cast<double>(edges), 1e-6 * extent);
  buckets_.resize(std::bit_ceil(2 * edges));
  entered_.resize(x.size(), {0, 0, -1, -1});
  for (std::size_t v = 0; v < x.size(); ++v)
    if (border.next[v] != kNone) enter(static_cast<Index>(v));
  findRings();
}

void BorderGuard::findRings() {
  last_.assign(x_.begin(), x_.end());
  ringOf_.assign(x_.size(), kNone);
  for (std::size_t first = 0; first < x_.size(); ++first) {
    if (border_.next[first] == kNone || ringOf_[first] != kNone) continue;
    const auto ring = static_cast<Index>(ringArea_.size());
    double area = 0;
    for (Index v = static_cast<Index>(first); ringOf_[at(v)] == kNone; v = border_.next[at(v)]) {
      ringOf_[at(v)] = ring;
      area += doubleArea(x_[first], x_[at(v)], x_[at(border_.next[at(v)])]);
    }
    ringArea_.push_back(area);
  }
  // Of rings that don't cross, the one around all has the greatest area.
  for (std::size_t ring = 0; ring < ringArea_.size(); ++ring)
    if (outer_ == kNone || std::abs(ringArea_[ring]) > std::abs(ringArea_[at(outer_)]))
      outer_ = static_cast<Index>(ring);
}

bool BorderGuard::holesFaceRight() const {
  if (outer_ == kNone) return true;
  const double up = ringArea_[at(outer_)];
  for (std::size_t ring = 0; ring < ringArea_.size(); ++ring)
    if (static_cast<Index>(ring) != outer_ && ringArea_[ring] * up > 0) return false;
  return true;
}

bool BorderGuard::keepsRing(Index v, Point place) const {
  const Point previous = x_[at(border_.previous[at(v)])], next = x_[at(border_.next[at(v)])];
  // A vertex that is put back was in no ring; its neighbours were joined by an edge.
  const bool isNew = ringOf_[at(v)] == kNone;
  const Index ring = ringOf_[at(isNew ? border_.previous[at(v)] : v)];
  if (ring == kNone || ring == outer_) return true;
  const double up = ringArea_[at(outer_)], before = ringArea_[at(ring)];
  const double after = before + doubleArea(previous, place, next) -
                       (isNew ? 0 : doubleArea(previous, last_[at(v)], next));
  return before * up > 0 || after * up <= 0;
}

BorderGuard::Cells BorderGuard::cellsOf(Point a, Point b) const {
  const auto cell = [&](double value) {
    return static_cast<std::int64_t>(std::floor(std::clamp(value * perCell_, -1e15, 1e15)));
  };
  return {cell(std::min(a.x, b.x)), cell(std::min(a.y, b.y)), cell(std::max(a.x, b.x)),
          cell(std::max(a.y, b.y))};
}

std::size_t BorderGuard::bucketOf(std::int64_t x, std::int64_t y) const {
  const std::uint64_t mixed = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15u ^
                              static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4Fu;
  return static_cast<std::size_t>(mixed >> 20) & (buckets_.size() - 1);
}

void BorderGuard::enter(Index edge) {
  const Cells now = cellsOf(x_[at(edge)], x_[at(border_.next[at(edge)])]);
  Cells& had = entered_[at(edge)];
  if (had.x0 <= now.x0 && had.y0 <= now.y0 && now.x1 <= had.x1 && now.y1 <= had.y1) return;
  for (std::int64_t y = now.y0; y <= now.y1; ++y)
    for (std::int64_t x = now.x0; x <= now.x1; ++x) buckets_[bucketOf(x, y)].push_back(edge);
  had = now;
}

void BorderGuard::moved(Index v) {
  const Point previous = x_[at(border_.previous[at(v)])], next = x_[at(border_.next[at(v)])];
  const bool isNew = ringOf_[at(v)] == kNone;
  if (isNew) ringOf_[at(v)] = ringOf_[at(border_.previous[at(v)])];
  if (const Index ring = ringOf_[at(v)]; ring != kNone)
    ringArea_[at(ring)] += doubleArea(previous, x_[at(v)], next) -
                           (isNew ? 0 : doubleArea(previous, last_[at(v)], next));
  last_[at(v)] = x_[at(v)];
  enter(v);
  enter(border_.previous[at(v)]);
}

bool BorderGuard::edgeTouches(Point a, Point b, Index from, Index to, Index except) const {
  const Cells cells = cellsOf(a, b);
  for (std::int64_t y = cells.y0; y <= cells.y1; ++y)
    for (std::int64_t x = cells.x0; x <= cells.x1; ++x)
      for (const Index other : buckets_[bucketOf(x, y)]) {
        const Index end = border_.next[at(other)];
        if (other == except || end == except || other == from) continue;
        const Point c = x_[at(other)], d = x_[at(end)];
        if (other == to) {
          if (end == from ? false : foldsBack(b, a, d)) return true;
        } else if (end == from) {
          if (foldsBack(a, b, c)) return true;
        } else if (segmentsTouch(a, b, c, d)) {
          return true;
        }
      }
  return false;
}

bool BorderGuard::allows(Index v, Point place) const {
  const Index next = border_.next[at(v)], previous = border_.previous[at(v)];
  if (next == previous) return true;
  if (foldsBack(place, x_[at(previous)], x_[at(next)]) || !keepsRing(v, place)) return false;
  return !edgeTouches(place, x_[at(next)], v, next, v) &&
         !edgeTouches(x_[at(previous)], place, previous, v, v);
}

Index BorderGuard::firstTouch() const {
  for (std::size_t v = 0; v < entered_.size(); ++v) {
    const Index next = border_.next[v];
    if (next != kNone && edgeTouches(x_[v], x_[at(next)], static_cast<Index>(v), next, kNone))
      return static_cast<Index>(v);
  }
  return kNone;
}

std::vector<Index> BorderGuard::touching() const {
  std::vector<Index> found;
  for (std::size_t v = 0; v < entered_.size(); ++v) {
    const Index next = border_.next[v];
    if (next == kNone || !edgeTouches(x_[v], x_[at(next)], static_cast<Index>(v), next, kNone))
      continue;
    found.push_back(static_cast<Index>(v));
    found.push_back(next);
  }
  return found;
}

}  // namespace host::ops::flat
