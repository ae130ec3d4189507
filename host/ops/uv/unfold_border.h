#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "host/ops/uv/unfold_plane.h"

namespace host::ops::flat {

/// The border of a chart as rings of vertices: next and previous of each, -1 inside.
struct Border {
  std::vector<Index> next, previous;
  [[nodiscard]] bool has(Index v) const { return next[at(v)] != kNone; }
};

/// Keeps the border of a flat piece from crossing itself, one vertex at a time.
///
/// A piece whose triangles all face up covers no place twice exactly if its border does not cross
/// itself and no hole is turned inside out: the border's rings wind around a place as often as the
/// piece covers it. (A small hole turns where the surface at one of its corners opens beyond a full
/// turn, with no edges crossing.) So border edges and the rings' areas are watched. The edges lie
/// in a grid of buckets; a check costs what is near.
class BorderGuard {
 public:
  /// @param x positions that this guard reads again at each call; they must outlive it
  BorderGuard(const Border& border, std::span<const Point> x);
  /// Whether the border edges of v would touch no other border edge if v were at `place`.
  [[nodiscard]] bool allows(Index v, Point place) const;
  /// A little past the end of a move: where that is free too, some air stays between edges, enough
  /// for positions to be rounded to floats.
  [[nodiscard]] Point beyond(Point from, Point to) const {
    const Point way = to - from;
    return to + air_ / std::max(length(way), 1e-300) * way;
  }
  /// Tells that v has moved.
  void moved(Index v);
  /// Whether no two border edges touch and just one ring runs around the piece, the others around
  /// holes. Linear for edges of like length.
  [[nodiscard]] bool isSimple() const { return holesFaceRight() && firstTouch() == kNone; }
  /// A border vertex whose edge to the next one touches another edge; -1 when there is none.
  [[nodiscard]] Index firstTouch() const;
  /// The vertices at both ends of all border edges that touch others.
  [[nodiscard]] std::vector<Index> touching() const;

 private:
  struct Cells {
    std::int64_t x0, y0, x1, y1;
  };
  [[nodiscard]] Cells cellsOf(Point a, Point b) const;
  [[nodiscard]] std::size_t bucketOf(std::int64_t x, std::int64_t y) const;
  void enter(Index edge);
  void findRings();
  [[nodiscard]] bool holesFaceRight() const;
  /// Whether the ring at v would still run the right way around if v were at `place`.
  [[nodiscard]] bool keepsRing(Index v, Point place) const;
  [[nodiscard]] bool edgeTouches(Point a, Point b, Index from, Index to, Index except) const;

  const Border& border_;
  std::span<const Point> x_;
  double perCell_ = 1, air_ = 0;
  std::vector<std::vector<Index>> buckets_;  // an edge is named by the vertex it starts at
  std::vector<Cells> entered_;
  std::vector<Index> ringOf_;     // by vertex
  std::vector<double> ringArea_;  // doubled, signed
  std::vector<Point> last_;       // where the areas have the vertices
  Index outer_ = kNone;           // the ring around the piece
};

}  // namespace host::ops::flat
