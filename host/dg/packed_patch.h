#pragma once

#include <vector>

#include "host/dg/slot.h"

// What records keep of a packed array, private to this folder.

namespace host::dg {

/// What a packed array held before an edit: all of it, or what the edit changed when that is much
/// less. Swapping it with the array takes the edit back, and again does it once more; a part leaves
/// the other elements as they are.
class PackedPatch {
 public:
  PackedPatch(PackedArray before, const PackedArray* now);

  [[nodiscard]] bool isWhole() const { return isWhole_; }
  [[nodiscard]] PackedArray& whole() { return whole_; }
  void swapPart(PackedArray& array);
  /// Whether an element that the array has is gone after the swap.
  [[nodiscard]] bool leavesOut(Index index) const;
  [[nodiscard]] std::size_t bytes() const;

 private:
  void keepDifference(const PackedArray& before, const PackedArray& now);
  void swapInPlace(PackedArray& array);
  void swapByMerging(PackedArray& array);
  [[nodiscard]] bool isInPlace(const PackedArray& array) const;

  bool isWhole_ = true;
  PackedArray whole_;
  std::vector<Index> indices_;  ///< where the two differ, ascending
  std::vector<std::uint8_t> isThere_;
  std::vector<double> values_;  ///< of those that are there
  /// The contents with which the array is met, and those that it then gets.
  std::uint64_t expected_ = 0, other_ = 0;
};

}  // namespace host::dg
