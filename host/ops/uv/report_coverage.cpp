#include <algorithm>
#include <cstdint>

#include "host/ops/uv/report_triangles.h"

namespace host::ops {
namespace {

using flat::Point;

constexpr long long kParts = 256;  ///< of a pixel, to which corners are rounded
constexpr int kWidestGap = 64;     ///< pixels

/// Which chart each pixel sees at its centre, -1 for none. A centre on an edge belongs to the
/// triangle on the upper left of it.
class ChartMap {
 public:
  explicit ChartMap(int size) : size_(size), charts_(at(size) * at(size), kNone) {}

  void draw(const std::array<Point, 3>& corners, Index chart) {
    std::array<long long, 3> x{}, y{};
    for (std::size_t k = 0; k < 3; ++k) {
      x[k] = std::llround(corners[k].x * static_cast<double>(size_ * kParts));
      y[k] = std::llround(corners[k].y * static_cast<double>(size_ * kParts));
    }
    const long long area = (x[1] - x[0]) * (y[2] - y[0]) - (y[1] - y[0]) * (x[2] - x[0]);
    if (area == 0) return;
    if (area < 0) {
      std::swap(x[1], x[2]);
      std::swap(y[1], y[2]);
    }
    const auto [bottom, top] = std::ranges::minmax(y);
    const int firstRow = static_cast<int>(std::max(0LL, bottom / kParts - 1));
    const int lastRow = static_cast<int>(std::min<long long>(size_ - 1, top / kParts + 1));
    for (int row = firstRow; row <= lastRow; ++row) {
      long long begin = 0, end = size_;
      for (std::size_t k = 0; k < 3 && begin < end; ++k)
        clip({x[k], y[k]}, {x[(k + 1) % 3], y[(k + 1) % 3]}, row, begin, end);
      if (begin >= end) continue;
      std::fill_n(
          charts_.begin() + static_cast<std::ptrdiff_t>(indexOf(static_cast<int>(begin), row)),
          end - begin, chart);
      drawn_ += static_cast<std::uint64_t>(end - begin);
    }
  }

  /// Whether every pixel was drawn so often that more of it would only take time.
  [[nodiscard]] bool isDrawnOver() const { return drawn_ > 512 * charts_.size(); }

  [[nodiscard]] double covered() const {
    const auto empty = std::ranges::count(charts_, kNone);
    return 1 - static_cast<double>(empty) / static_cast<double>(charts_.size());
  }

  /// Grows all charts by rings until two meet.
  [[nodiscard]] int gap() {
    std::vector<std::uint8_t> rings(charts_.size(), 0);
    std::vector<std::size_t> front, next;
    for (std::size_t i = 0; i < charts_.size(); ++i)
      if (charts_[i] != kNone) front.push_back(i);
    for (int ring = 0; ring < kWidestGap; ++ring) {
      int best = 1 << 30;
      next.clear();
      for (const std::size_t i : front) {
        const int x = static_cast<int>(i % at(size_));
        const int y = static_cast<int>(i / at(size_));
        for (int v = std::max(0, y - 1); v <= std::min(size_ - 1, y + 1); ++v)
          for (int u = std::max(0, x - 1); u <= std::min(size_ - 1, x + 1); ++u) {
            const std::size_t k = indexOf(u, v);
            if (charts_[k] == kNone) {
              charts_[k] = charts_[i];
              rings[k] = static_cast<std::uint8_t>(ring + 1);
              next.push_back(k);
            } else if (charts_[k] != charts_[i]) {
              best = std::min(best, ring + rings[k]);
            }
          }
      }
      if (best < 1 << 30) return best;
      front.swap(next);
    }
    return -1;
  }

 private:
  [[nodiscard]] std::size_t indexOf(int x, int y) const { return at(y) * at(size_) + at(x); }
  using Spot = std::array<long long, 2>;
  static long long floorDivided(long long a, long long b) {
    return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0);
  }

  /// Narrows [begin, end) to the columns whose centres lie left of an edge in a row, those on the
  /// edge too where the edge is a left or upper one.
  static void clip(Spot from, Spot to, int row, long long& begin, long long& end) {
    const long long dx = to[0] - from[0], dy = to[1] - from[1];
    const long long py = row * kParts + kParts / 2;
    const long long atFirst = dx * (py - from[1]) - dy * (kParts / 2 - from[0]);
    if (dy > 0)
      end = std::min(end, floorDivided(atFirst - 1, kParts * dy) + 1);
    else if (dy < 0)
      begin = std::max(begin, -floorDivided(atFirst, kParts * -dy));
    else if (atFirst < 0 || (atFirst == 0 && dx <= 0))
      end = begin;
  }

  int size_;
  std::vector<Index> charts_;
  std::uint64_t drawn_ = 0;
};

}  // namespace

UvCoverage uvCoverage(const mesh::UvSet& set, const UvTriangles& triangles, int size) {
  ChartMap map(size);
  for (const UvTriangle& t : triangles.all) {
    map.draw({uvPoint(set, t.corners[0]), uvPoint(set, t.corners[1]), uvPoint(set, t.corners[2])},
             t.chart);
    if (map.isDrawnOver()) break;
  }
  UvCoverage coverage;
  coverage.covered = map.covered();
  if (triangles.charts > 1) coverage.gapPixels = map.gap();
  return coverage;
}

}  // namespace host::ops
