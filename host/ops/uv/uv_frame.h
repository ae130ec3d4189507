#pragma once

#include <span>
#include <vector>

#include "host/ops/uv/unfold_plane.h"

namespace host::ops {

/// Where the points of a closed line go on the circle in the unit square, spaced as they are along
/// the line; the first keeps its side.
/// @param places of the points, counter-clockwise; @param along how far around each lies, from 0
/// @param around the length of the whole line
[[nodiscard]] std::vector<flat::Point> onCircle(std::span<const flat::Point> places,
                                                std::span<const double> along, double around);

/// The same on the border of the unit square. Four points come to lie in its corners: where the
/// line turns most, about a quarter of the way from each other; a face that has no point inside the
/// line keeps its area there.
[[nodiscard]] std::vector<flat::Point> onSquare(std::span<const flat::Point> places,
                                                std::span<const double> along, double around);

}  // namespace host::ops
