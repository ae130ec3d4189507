#include "host/ops/uv/box_packing.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace host::ops {

namespace {

/// Rows no wider than `limit`; a wider box has a row of its own.
PackedExtent packRows(std::span<PackedBox> boxes, std::span<const std::size_t> order, double gap,
                      double limit) {
  PackedExtent extent;
  double x = 0, y = 0, rowHeight = 0;
  for (const std::size_t i : order) {
    PackedBox& box = boxes[i];
    if (x > 0 && x + box.width > limit) {
      y += rowHeight + gap;
      x = 0;
      rowHeight = 0;
    }
    box.x = x;
    box.y = y;
    x += box.width + gap;
    rowHeight = std::max(rowHeight, box.height);
    extent.width = std::max(extent.width, x - gap);
  }
  extent.height = y + rowHeight;
  return extent;
}

}  // namespace

PackedExtent packInSquare(std::span<PackedBox> boxes, double gap) {
  std::vector<std::size_t> order(boxes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [&](std::size_t a, std::size_t b) { return boxes[a].height > boxes[b].height; });
  double area = 0, widest = 0;
  for (const PackedBox& box : boxes) {
    area += (box.width + gap) * (box.height + gap);
    widest = std::max(widest, box.width);
  }
  double best = widest, bestSide = -1;
  for (double factor = 1; factor < 2.05; factor += 0.05) {
    const double limit = std::max(widest, std::sqrt(area) * factor);
    const PackedExtent extent = packRows(boxes, order, gap, limit);
    const double side = std::max(extent.width, extent.height);
    if (bestSide >= 0 && side >= bestSide) continue;
    bestSide = side;
    best = limit;
  }
  return packRows(boxes, order, gap, best);
}

PackedExtent packInRow(std::span<PackedBox> boxes, double gap) {
  std::vector<std::size_t> order(boxes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  return packRows(boxes, order, gap, 1e300);
}

}  // namespace host::ops
