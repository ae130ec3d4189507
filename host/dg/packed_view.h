#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/dg/plug.h"

// Packed arrays read where they lie, for those to whom a copy of all numbers is too much.

namespace host::dg {

struct PackedView {
  std::span<const Index> indices;  ///< ascending logical indices
  std::span<const double> values;  ///< as many for each as the attribute has children
  /// Whenever an array has the same number, it holds the same, taken back and done again too. 0: no
  /// element.
  std::uint64_t content = 0;
};

/// The elements of a packed array, good until the next edit of it; nothing when some have to be
/// fetched over connections first, or the array is of another kind.
[[nodiscard]] std::optional<PackedView> packedView(const Plug& array);

/// The number of the contents that Graph::setPacked will set if it is called now. Who edits the
/// same array when told of that edit makes it others.
[[nodiscard]] std::uint64_t nextPackedContent();

}  // namespace host::dg
