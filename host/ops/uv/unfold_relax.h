#pragma once

#include <cstdint>

#include "host/ops/uv/unfold_border.h"
#include "host/ops/uv/unfold_energy.h"

namespace host::ops::flat {

/// In which directions vertices may go.
enum class Axes { Both, VerticalOnly, HorizontalOnly };

/// Lowers the energy of a valid flat piece vertex by vertex: each goes to where Newton's step takes
/// it, shortened until no triangle at it turns over, the border stays apart and the energy falls.
///
/// Vertices are taken in groups without common triangles, which run in parallel with the same
/// result for any number of threads. A sweep is linear in elements.
class Relaxer {
 public:
  /// @param border rings to keep apart; nullptr lets the border cross itself
  /// @param isFixed per vertex, may be empty
  Relaxer(const Energy& energy, std::span<const Element> elements, std::size_t vertexCount,
          const Border* border, std::span<const std::uint8_t> isFixed = {}, Axes axes = Axes::Both);

  /// Moves each vertex once. Every element must have a positive determinant before; it has after.
  void sweep(std::vector<Point>& x) const;
  /// Moves one vertex; false when it stayed.
  bool relax(Index v, std::vector<Point>& x, BorderGuard* guard) const;

 private:
  struct Term;
  void makeGroups(std::span<const std::uint8_t> isFixed);

  Energy energy_;
  std::span<const Element> elements_;
  const Border* border_;
  Axes axes_;
  std::vector<Index> start_, corners_;      // 3 * element + corner, grouped by vertex
  std::vector<std::vector<Index>> groups_;  // inner vertices
  std::vector<Index> borderVertices_;
};

}  // namespace host::ops::flat
