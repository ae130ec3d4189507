#pragma once

#include <span>
#include <vector>

#include "host/ops/uv/unfold_border.h"

namespace host::ops::flat {

/// One vertex that was taken out by sliding it along an edge into a neighbour.
struct Collapse {
  Index removed = kNone, kept = kNone;
  /// The triangles that had `removed` and went on with `kept`, then those that vanished: positions
  /// in Hierarchy::touched.
  Index firstTouched = 0, survivorEnd = 0, touchedEnd = 0;
  Index borderNext = kNone, borderPrevious = kNone;  ///< of `removed` before; -1 inside
};

/// A chart and ever coarser versions of it, down to some tens of vertices.
///
/// Each level takes out vertices that are no neighbours of each other, those first whose loss
/// bends and thins the surface least. `triangles` and `border` are the coarsest version at first;
/// refine() puts the vertices of one level back. Positions keep their numbers through all levels.
struct Hierarchy {
  std::vector<Triangle> triangles;    ///< all of the chart; only those with isAlive count now
  std::vector<std::uint8_t> isAlive;  ///< per triangle
  std::vector<std::uint8_t> isIn;     ///< per vertex
  Border border;
  std::vector<Index> touched;
  std::vector<Collapse> collapses;
  std::vector<std::size_t> levelStart;  ///< into collapses, a finest level first
  [[nodiscard]] std::size_t levels() const { return levelStart.size(); }
  /// Puts back one vertex. Collapses are undone from the last to the first.
  void undo(const Collapse& collapse);
};

/// Coarsens a chart until about `target` vertices are left or nothing more can go. The chart must
/// be manifold and consistently wound. n log n.
[[nodiscard]] Hierarchy coarsen(std::span<const Triangle> triangles,
                                std::span<const math::Vec3> points, const Border& border,
                                Index target);

}  // namespace host::ops::flat
