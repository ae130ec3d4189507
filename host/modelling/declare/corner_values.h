#pragma once

#include <optional>
#include <vector>

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// Reads what a node says of single vertices and corners: sparse arrays in arrays.
class CornerValues {
 public:
  explicit CornerValues(DataBlock& block) : block_(block) {}

  [[nodiscard]] std::vector<Index> indices(const Plug& array) const {
    return block_.graph().elementIndices(array);
  }
  /// 0 after a fault.
  [[nodiscard]] double number(const Plug& leaf);
  [[nodiscard]] math::Vec3 triple(const Plug& compound) {
    return {number(compound.child(0)), number(compound.child(1)), number(compound.child(2))};
  }
  /// The first fault of an input.
  [[nodiscard]] Result<void> fault() const;

 private:
  DataBlock& block_;
  std::optional<Error> fault_;
};

/// Drops colours that no corner has any more; the others keep their order.
void dropUnusedColors(mesh::ColorSet& set);

}  // namespace host::modelling
