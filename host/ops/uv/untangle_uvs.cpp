#include "host/ops/uv/untangle_uvs.h"

#include <algorithm>

#include "host/base/cancel.h"
#include "host/ops/uv/unfold_piece.h"
#include "host/ops/uv/uv_frame.h"

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

/// Rounds a ring off, keeping its middle and how far it reaches: less detail, more rounds.
void smoothRing(const std::vector<Index>& ring, double detail, std::vector<Point>& x) {
  const auto rounds =
      static_cast<int>(std::clamp(20 - detail, 0.0, 20.0) * static_cast<double>(ring.size()) / 40);
  std::vector<Point> smooth(ring.size());
  const auto reach = [&](auto place) {
    Point middle{0, 0};
    for (std::size_t i = 0; i < ring.size(); ++i)
      middle = middle + (1.0 / static_cast<double>(ring.size())) * place(i);
    double sum = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) sum += flat::length(place(i) - middle);
    return std::pair{middle, sum};
  };
  const auto at0 = [&](std::size_t i) { return x[at(ring[i])]; };
  const auto [middle, before] = reach(at0);
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < ring.size(); ++i)
      smooth[i] = 0.5 * at0(i) +
                  0.25 * (at0((i + 1) % ring.size()) + at0((i + ring.size() - 1) % ring.size()));
    for (std::size_t i = 0; i < ring.size(); ++i) x[at(ring[i])] = smooth[i];
  }
  const auto [now, after] = reach(at0);
  if (rounds == 0 || !(after > 0)) return;
  for (const Index v : ring) x[at(v)] = middle + (before / after) * (x[at(v)] - now);
}

/// The pull of an edge, given its length on the surface and the corner across from it.
double springOf(UntangleOptions::Relax relax, const math::Vec3& a, const math::Vec3& b,
                const math::Vec3& across) {
  const double size = std::max(math::distance(a, b), 1e-12);
  switch (relax) {
    case UntangleOptions::Relax::InverseLength:
      return 1 / size;
    case UntangleOptions::Relax::InverseSqrtLength:
      return 1 / std::sqrt(size);
    case UntangleOptions::Relax::Harmonic: {
      const math::Vec3 p = a - across, q = b - across;
      const double area = math::length(math::cross(p, q));
      // Obtuse corners would push; a mean of places needs pulls.
      return std::max(1e-3, area > 0 ? math::dot(p, q) / area : 0.0);
    }
    default:
      return 1;
  }
}

/// Lets the edges pull the free UVs as springs, as long as nothing turns over.
/// @return the rounds done
int relaxSprings(const flat::Piece& piece, const UntangleOptions& options,
                 const std::vector<std::uint8_t>& isFixed, std::vector<Point>& x) {
  struct Spring {
    Index to;
    double pull;
  };
  std::vector<std::vector<Spring>> springs(x.size());
  std::vector<std::vector<const flat::Triangle*>> around(x.size());
  double size = 0;
  for (const flat::Triangle& t : piece.triangles)
    for (std::size_t k = 0; k < 3; ++k) {
      const Index a = t[k], b = t[(k + 1) % 3], c = t[(k + 2) % 3];
      const double pull =
          springOf(options.relax, piece.points[at(a)], piece.points[at(b)], piece.points[at(c)]);
      springs[at(a)].push_back({b, pull});
      springs[at(b)].push_back({a, pull});
      around[at(a)].push_back(&t);
      size = std::max(size, flat::length(x[at(a)] - x[at(b)]));
    }
  const auto isUpright = [&](std::size_t v) {
    return std::ranges::all_of(around[v], [&](const flat::Triangle* t) {
      return flat::doubleArea(x[at((*t)[0])], x[at((*t)[1])], x[at((*t)[2])]) > 0;
    });
  };
  int round = 0;
  for (double most = size;
       round < options.relaxIterations && most > 1e-4 * options.tolerance * size; ++round) {
    if (isCancelled()) break;
    most = 0;
    for (std::size_t v = 0; v < x.size(); ++v) {
      if (isFixed[v] || springs[v].empty() || !isUpright(v)) continue;
      Point sum{0, 0};
      double pulls = 0;
      for (const Spring& spring : springs[v]) {
        sum = sum + spring.pull * x[at(spring.to)];
        pulls += spring.pull;
      }
      const Point from = x[v], step = (1 / pulls) * sum - from;
      for (double part = 1; part > 0.1; part *= 0.5) {
        x[v] = from + part * step;
        if (isUpright(v)) break;
        x[v] = from;
      }
      most = std::max(most, flat::length(x[v] - from));
    }
  }
  return round;
}

/// Puts the border where it was asked to go; the inside follows the unfolded shape.
Result<void> mapBorderOf(const flat::Piece& piece, const UntangleOptions& options,
                         std::vector<Point>& x) {
  const MapBorder how = options.mapBorder;
  flat::Flattened shape = flat::flatten(piece, {});
  if (shape.x.empty()) return fail("no flat layout without turned faces was found");
  x = std::move(shape.x);
  fitInSquare(x);
  if (how != MapBorder::Circular && how != MapBorder::Square)
    smoothRing(longestRing(piece), options.shapeDetail, x);
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
  std::vector<Point> places;
  for (const Index v : ring) places.push_back(x[at(v)]);
  const std::vector<Point> targets =
      isSquare ? onSquare(places, along, around) : onCircle(places, along, around);
  for (std::size_t i = 0; i < ring.size(); ++i)
    x[at(ring[i])] = (1 - blend) * x[at(ring[i])] + blend * targets[i];
  return {};
}

Result<int> untangleShell(const ShellPiece& shell, std::vector<std::uint8_t> isFixed,
                          const UntangleOptions& options, std::vector<Point>& x) {
  const flat::Piece& piece = shell.piece;
  const bool maps = options.mapBorder != MapBorder::Keep;
  if (maps) {
    HOST_TRY(mapBorderOf(piece, options, x));
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
  if (options.relax != UntangleOptions::Relax::Stretch) {
    for (std::size_t i = 0; i < x.size(); ++i)
      if (piece.border.has(static_cast<Index>(i))) isFixed[i] = 1;  // springs alone would shrink it
    return relaxSprings(piece, options, isFixed, x);
  }
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
