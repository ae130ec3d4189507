#pragma once

#include <span>
#include <vector>

namespace host::ops {

struct PackedBox {
  double width = 0, height = 0;
  double x = 0, y = 0;  ///< where its lower left corner comes to lie
};

/// The sides of the rectangle that the boxes were packed into.
struct PackedExtent {
  double width = 0, height = 0;
};

/// Puts boxes beside each other in rows, highest first, `gap` apart, in a rectangle that is as
/// nearly square as rows allow. Boxes of one height keep their order. n log n.
PackedExtent packInSquare(std::span<PackedBox> boxes, double gap);
/// Puts boxes in one row, in their order.
PackedExtent packInRow(std::span<PackedBox> boxes, double gap);

}  // namespace host::ops
