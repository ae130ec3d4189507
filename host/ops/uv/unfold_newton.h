#pragma once

#include <memory>

#include "host/ops/uv/unfold_border.h"
#include "host/ops/uv/unfold_energy.h"

namespace host::ops::flat {

/// Lowers the energy of a valid flat piece by moving all its vertices at once: Newton's method with
/// each element's second derivatives made positive (Smith, de Goes and Kim 2019), a sparse
/// factorization whose pattern is analysed once, and a step that turns no triangle over and keeps
/// the border apart.
class NewtonSolver {
 public:
  /// Vertices that no element has, and fixed ones (per vertex, may be empty), stay.
  NewtonSolver(const Energy& energy, std::span<const Element> elements, std::size_t vertexCount,
               std::span<const std::uint8_t> isFixed = {});
  ~NewtonSolver();
  NewtonSolver(const NewtonSolver&) = delete;
  NewtonSolver& operator=(const NewtonSolver&) = delete;

  /// Takes one step. @param border rings to keep apart, or nullptr
  /// @return how much the mean energy fell, relative to what it was; 0 when no step was possible.
  double step(std::vector<Point>& x, const Border* border);

 private:
  struct System;
  std::unique_ptr<System> system_;
};

}  // namespace host::ops::flat
