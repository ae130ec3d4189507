#include "host/ops/uv/untangle_uvs.h"

#include <algorithm>
#include <numbers>

#include "host/base/cancel.h"
#include "host/ops/uv/unfold_piece.h"

namespace host::ops {
namespace {

using flat::Point;
using MapBorder = UntangleOptions::MapBorder;

/// The border ring with the longest way around on the surface, in its direction.
std::vector<Index> longestRing(const flat::Piece& piece) {
  std::vector<Index> longest;
  double most = -1;
  std::vector<bool> isDone(piece.points.size(), false);
  for (std::size_t first = 0; first < isDone.size(); ++first) {
    if (isDone[first] || piece.border.next[first] == kNone) continue;
    std::vector<Index> ring;
    double around = 0;
    for (Index v = static_cast<Index>(first); !isDone[at(v)]; v = piece.border.next[at(v)]) {
      isDone[at(v)] = true;
      ring.push_back(v);
      around += math::distance(piece.points[at(v)], piece.points[at(piece.border.next[at(v)])]);
    }
    if (around > most) {
      most = around;
      longest = std::move(ring);
    }
  }
  return longest;
}

/// The point of a circle or square in the unit square that lies a part of the way around.
Point onFrame(double part, bool isSquare) {
  const double angle = 2 * std::numbers::pi * part;
  const Point round{std::cos(angle), std::sin(angle)};
  const double reach = isSquare ? 1 / std::max(std::abs(round.x), std::abs(round.y)) : 1;
  return {0.5 + 0.5 * reach * round.x, 0.5 + 0.5 * reach * round.y};
}

/// Fits points into the unit square, evenly.
void fitInSquare(std::vector<Point>& x) {
  Point low{1e300, 1e300}, high{-1e300, -1e300};
  for (const Point& p : x) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  const double scale = 1 / std::max({high.x - low.x, high.y - low.y, 1e-300});
  const Point middle = 0.5 * (low + high);
  for (Point& p : x) p = Point{0.5, 0.5} + scale * (p - middle);
}

/// Puts the border where it was asked to go; the inside follows the unfolded shape.
Result<void> mapBorderOf(const flat::Piece& piece, MapBorder how, std::vector<Point>& x) {
  flat::Flattened shape = flat::flatten(piece, {});
  if (shape.x.empty()) return fail("no flat layout without turned faces was found");
  x = std::move(shape.x);
  fitInSquare(x);
  if (how == MapBorder::Shape) return {};
  const bool isSquare = how == MapBorder::Square || how == MapBorder::ShapeSquare;
  const double blend = how == MapBorder::Circular || how == MapBorder::Square ? 1 : 0.5;
  const std::vector<Index> ring = longestRing(piece);
  std::vector<double> along;
  double around = 0;
  for (const Index v : ring) {
    along.push_back(around);
    around += math::distance(piece.points[at(v)], piece.points[at(piece.border.next[at(v)])]);
  }
  // The frame is turned so that the ring's first vertex keeps its side.
  const Point first = x[at(ring[0])] - Point{0.5, 0.5};
  const double start = std::atan2(first.y, first.x) / (2 * std::numbers::pi);
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const Point target = onFrame(start + along[i] / around, isSquare);
    x[at(ring[i])] = (1 - blend) * x[at(ring[i])] + blend * target;
  }
  return {};
}

Result<int> untangleShell(const ShellPiece& shell, std::vector<std::uint8_t> isFixed,
                          const UntangleOptions& options, std::vector<Point>& x) {
  const flat::Piece& piece = shell.piece;
  const bool maps = options.mapBorder != MapBorder::Keep;
  if (maps) {
    HOST_TRY(mapBorderOf(piece, options.mapBorder, x));
    for (std::size_t i = 0; i < x.size(); ++i)
      if (isFixed[i]) x[i] = shell.x[i];
  }
  double area = 0, surface = 0;
  for (const flat::Triangle& t : piece.triangles) {
    area += 0.5 * std::abs(flat::doubleArea(x[at(t[0])], x[at(t[1])], x[at(t[2])]));
    surface += 0.5 * math::length(math::cross(piece.points[at(t[1])] - piece.points[at(t[0])],
                                              piece.points[at(t[2])] - piece.points[at(t[0])]));
  }
  if (!(area > 0)) return fail("all its UVs lie in a line");
  if (maps || options.pinBorder)
    for (std::size_t i = 0; i < x.size(); ++i)
      if (piece.border.has(static_cast<Index>(i))) isFixed[i] = 1;
  const auto elements = flat::elementsOf(piece, x, 1, std::sqrt(area / surface));
  if (!flat::untangle(elements, isFixed, flat::Axes::Both, 100, x))
    return fail("its border and pinned UVs leave no way to lay it flat without turned faces");
  flat::FlattenOptions relax;
  relax.iterations = options.relaxIterations;
  relax.threshold = options.tolerance;
  const bool isApart = flat::BorderGuard(piece.border, x).isSimple();
  return flat::improve(elements, relax, isApart ? &piece.border : nullptr, isFixed,
                       flat::Axes::Both, x);
}

/// Whether rounding to floats leaves every triangle that is not all pinned upright.
bool staysUpright(const flat::Piece& piece, const std::vector<std::uint8_t>& isFixed,
                  const std::vector<mesh::Vec2f>& places) {
  return std::ranges::all_of(piece.triangles, [&](const flat::Triangle& t) {
    return (isFixed[at(t[0])] && isFixed[at(t[1])] && isFixed[at(t[2])]) ||
           flat::orientation(places[at(t[0])], places[at(t[1])], places[at(t[2])]) > 0;
  });
}

}  // namespace

Result<UnfoldResult> untangleUvs(mesh::Mesh& mesh, int uvSet, std::span<const Index> shells,
                                 std::span<const std::uint8_t> isPinned,
                                 const UntangleOptions& options) {
  if (uvSet < 0 || uvSet >= mesh.uvSetCount())
    return fail(ErrorKind::NotFound, "There is no UV set {}.", uvSet);
  if (!isPinned.empty() && isPinned.size() != mesh.uvSet(uvSet).points.size())
    return fail("Pins are given for {} UVs, but the set has {}.", isPinned.size(),
                mesh.uvSet(uvSet).points.size());
  PieceMaker maker(mesh, uvSet);
  UnfoldResult result;
  std::vector<mesh::Vec2f> points = mesh.uvSet(uvSet).points;
  LongWork work("Untangling", shells.size());
  for (const Index s : shells) {
    if (s < 0 || s >= maker.topology().shellCount)
      return fail(ErrorKind::NotFound, "There is no UV shell {}.", s);
    work.advance();
    auto shell = maker.make(s);
    if (!shell) {
      result.left.push_back(shell.error().message);
      continue;
    }
    std::vector<std::uint8_t> isFixed(shell->uvs.size(), 0);
    for (std::size_t i = 0; i < isFixed.size(); ++i)
      isFixed[i] = !isPinned.empty() && isPinned[at(shell->uvs[i])];
    std::vector<Point> x = shell->x;
    const auto rounds = untangleShell(*shell, isFixed, options, x);
    if (isCancelled()) return cancelled();
    std::vector<mesh::Vec2f> places;
    for (const Point& p : x) places.push_back({static_cast<float>(p.x), static_cast<float>(p.y)});
    if (!rounds || !staysUpright(shell->piece, isFixed, places)) {
      result.left.push_back(fmt::format(
          "The UV shell of face {} was left as it was: {}.", maker.topology().faces.of(s)[0],
          rounds ? "its triangles are too small for UVs to tell apart" : rounds.error().message));
      continue;
    }
    result.iterations = std::max(result.iterations, *rounds);
    ++result.shells;
    for (std::size_t i = 0; i < places.size(); ++i)
      if (!isFixed[i]) points[at(shell->uvs[i])] = places[i];
  }
  if (points != mesh.uvSet(uvSet).points) mesh.editUvSet(uvSet).points = std::move(points);
  return result;
}

}  // namespace host::ops
