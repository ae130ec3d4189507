#include <algorithm>

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
  explicit ChartMap(int size)
      : size_(size),
        charts_(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), kNone) {}

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
    const auto first = [](const std::array<long long, 3>& v) {
      return static_cast<int>(std::max(0LL, *std::min_element(v.begin(), v.end()) / kParts - 1));
    };
    const auto last = [&](const std::array<long long, 3>& v) {
      return static_cast<int>(
          std::min<long long>(size_ - 1, *std::max_element(v.begin(), v.end()) / kParts + 1));
    };
    for (int row = first(y); row <= last(y); ++row)
      for (int column = first(x); column <= last(x); ++column) {
        const long long px = column * kParts + kParts / 2, py = row * kParts + kParts / 2;
        bool isIn = true;
        for (std::size_t k = 0; k < 3 && isIn; ++k) {
          const long long dx = x[(k + 1) % 3] - x[k], dy = y[(k + 1) % 3] - y[k];
          const long long side = dx * (py - y[k]) - dy * (px - x[k]);
          isIn = side > 0 || (side == 0 && (dy < 0 || (dy == 0 && dx > 0)));
        }
        if (isIn) charts_[indexOf(column, row)] = chart;
      }
  }

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
        const int x = static_cast<int>(i % static_cast<std::size_t>(size_));
        const int y = static_cast<int>(i / static_cast<std::size_t>(size_));
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
  [[nodiscard]] std::size_t indexOf(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(size_) +
           static_cast<std::size_t>(x);
  }
  int size_;
  std::vector<Index> charts_;
};

}  // namespace

UvCoverage uvCoverage(const mesh::UvSet& set, const UvTriangles& triangles, int size) {
  ChartMap map(size);
  for (const UvTriangle& t : triangles.all)
    map.draw({uvPoint(set, t.corners[0]), uvPoint(set, t.corners[1]), uvPoint(set, t.corners[2])},
             t.chart);
  UvCoverage coverage;
  coverage.covered = map.covered();
  if (triangles.charts > 1) coverage.gapPixels = map.gap();
  return coverage;
}

}  // namespace host::ops
