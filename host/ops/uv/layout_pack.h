#pragma once

#include <span>
#include <vector>

#include "host/base/result.h"
#include "host/ops/uv/unfold_plane.h"

namespace host::ops::flat {

/// A flat shape to be packed, in units that all shapes share.
struct PackShape {
  std::vector<std::array<Point, 3>> triangles;  ///< at least one
};

struct PackOptions {
  double gutter = 0;  ///< free space between shapes and to the edge, part of the square's side
  enum class Turns { None, Quarters, Free };
  Turns turns = Turns::Free;
  bool packsBoxes = false;  ///< shapes count as their bounding boxes
  double scale = 0;  ///< fixed scale, the square grows upward as needed; 0 finds the greatest that
                     ///< fits in
  double width = 1;  ///< of the area to fill; its height is 1
  std::vector<PackShape> standing = {};  ///< what is there already, in the area's coordinates
};

/// A shape's place: scaled by the common scale, turned counter-clockwise, then moved.
struct PackPlace {
  Point turn{1, 0};  ///< cosine and sine
  Point offset;
  [[nodiscard]] Point at(Point p, double scale) const {
    return {scale * (turn.x * p.x - turn.y * p.y) + offset.x,
            scale * (turn.y * p.x + turn.x * p.y) + offset.y};
  }
};
struct Packing {
  double scale = 1;
  double height = 1;  ///< used, above 1 only with a fixed scale
  std::vector<PackPlace> places;
};

/// Packs shapes into a square by their true outlines: large ones first, each at a low place where
/// it lies close against what is there, in the turn that fits best; small ones fill the holes and
/// bays of large ones. A number of other orders is tried that depends on how many shapes there are,
/// so that the time stays bounded. The best ones then settle (see `settled`) where the scale is
/// sought, boxes do not stand for shapes and there are not very many of them.
///
/// The gutter is kept exactly, measured as the greater of the distances in u and v. The same shapes
/// always give the same packing, with any number of threads.
/// @return an error when the gutters alone fill the square, or the work was cancelled.
[[nodiscard]] Result<Packing> packShapes(std::span<const PackShape> shapes,
                                         const PackOptions& options);

}  // namespace host::ops::flat
