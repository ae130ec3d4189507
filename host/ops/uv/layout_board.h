#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/ops/uv/unfold_plane.h"

namespace host::ops::flat {

/// The cells [begin, end) of one row.
struct CellRun {
  std::int32_t begin, end;
};

/// The cells of a grid that a flat shape touches, row by row, from its lowest cell at (0, 0).
struct CellMask {
  std::int32_t width = 0, height = 0;
  std::vector<std::int32_t> rowStart{0};  ///< runs of row y: runs[rowStart[y], rowStart[y + 1])
  std::vector<CellRun> runs;
  Point origin;                                  ///< of cell (0, 0), in the shape's coordinates
  std::vector<std::array<std::int32_t, 2>> rim;  ///< some of the cells beside the mask's, evenly
  [[nodiscard]] std::span<const CellRun> row(std::int32_t y) const {
    const auto k = at(y);
    return {runs.data() + rowStart[k], runs.data() + rowStart[k + 1]};
  }
};

/// The cells that triangles touch, edges included: nothing of the shape lies outside of them.
/// Linear in triangles and cells.
/// @param corner of cell (0, 0), at or below all triangles; otherwise their lower left corner
[[nodiscard]] CellMask touchedCells(std::span<const std::array<Point, 3>> triangles,
                                    double cellSize, std::optional<Point> corner = {});

/// A board of cells on which masks are laid without overlap.
///
/// Beside the taken cells it keeps, for each power of two, where a run of so many cells would hit
/// one; so all places of a mask in a row are tested together, 64 to a word, two words a run.
class Board {
 public:
  /// @param gutter free cells kept around every mask, and to the edge of the board
  Board(std::int32_t width, std::int32_t height, std::int32_t gutter);
  struct Place {
    std::int32_t x = -1, y = -1;
    [[nodiscard]] bool exists() const { return x >= 0; }
  };
  /// Free places of a mask, row by row from the lowest on: the ends of every stretch of free places
  /// in the `band` rows from the lowest row that has one, as long as they lie below `before`.
  void places(const CellMask& mask, std::int32_t band, std::int32_t before,
              std::vector<Place>& out) const;
  /// How much of the mask's rim lies against something at a place, 0 to 1.
  [[nodiscard]] double contact(const CellMask& mask, Place place) const;
  /// Marks the mask's cells and the gap around them; what lies beyond the board is left out.
  void take(const CellMask& mask, Place place);
  [[nodiscard]] std::int32_t width() const { return width_; }
  [[nodiscard]] std::int32_t height() const { return height_; }
  [[nodiscard]] std::int32_t gutter() const { return gutter_; }

 private:
  using Word = std::uint64_t;
  [[nodiscard]] std::size_t wordOf(int power, std::int32_t y) const {
    return (at(power) * at(height_) + at(y)) * words_;
  }

  struct RunAt;
  [[nodiscard]] static std::vector<RunAt> spreadRuns(const CellMask& mask);
  [[nodiscard]] bool rowHasRoom(const std::vector<RunAt>& runs, std::int32_t y,
                                std::vector<Word>& taken, std::size_t& from, std::size_t& to) const;
  [[nodiscard]] std::int32_t longestFreeRun(std::int32_t y, std::int32_t before) const;

  std::int32_t width_, height_, gutter_;
  std::size_t words_;  // a row, with one to spare for shifting
  int powers_;
  std::vector<Word> hits_;
  std::vector<std::int32_t> longestFree_;  ///< per row at least the longest free run
};

}  // namespace host::ops::flat
