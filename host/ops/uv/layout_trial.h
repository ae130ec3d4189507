#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/ops/uv/layout_board.h"
#include "host/ops/uv/layout_pack.h"

namespace host::ops::flat {

/// The cells of one shape in one of the turns in which it is tried.
struct TurnedMask {
  Point turn;
  CellMask mask;
};

/// The cells of all shapes at one scale, in those of their turns that differ. Kept as long as there
/// are not too many shapes, so that several orders can be tried; made anew at each use else.
class ShapeMasks {
 public:
  /// @param turns of each shape, the first one its best
  ShapeMasks(std::span<const PackShape> shapes, std::span<const std::vector<Point>> turns,
             double scale, double cell, bool asBoxes);
  /// The masks of a shape; `scratch` holds them where they are not kept.
  [[nodiscard]] std::span<const TurnedMask> of(std::size_t shape,
                                               std::vector<TurnedMask>& scratch) const;

 private:
  [[nodiscard]] std::vector<TurnedMask> make(std::size_t shape) const;

  std::span<const PackShape> shapes_;
  std::span<const std::vector<Point>> turns_;
  double scale_, cell_;
  bool asBoxes_;
  std::vector<std::vector<TurnedMask>> kept_;
};

/// Where one order of shapes ended up on a board.
struct Trial {
  std::vector<std::size_t> order;
  std::vector<PackPlace> places;
  std::int32_t top = 0;  ///< cells used, with the gap above
  double skyline = 0;    ///< mean height of the topmost cells of the columns
  /// What is made smaller: the height, then what is left open below it.
  [[nodiscard]] double cost() const { return top + skyline; }
};

/// Lays shapes on a board in an order, each where it lies low and close against what is there.
/// @param board with what is there already; @param limit gives up above this many cells
/// @return nothing when a shape found no place or the work was cancelled
[[nodiscard]] std::optional<Trial> tryOrder(Board board, const ShapeMasks& masks,
                                            std::span<const std::size_t> order, double cell,
                                            std::int32_t limit);

/// An order near another one: some shapes come earlier or later. The same seed, the same order.
[[nodiscard]] std::vector<std::size_t> shuffled(std::span<const std::size_t> order,
                                                std::uint32_t seed);

}  // namespace host::ops::flat
