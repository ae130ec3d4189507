#include "host/ops/uv/layout_pack.h"

#include <algorithm>
#include <numbers>
#include <numeric>
#include <optional>

#include "host/base/cancel.h"
#include "host/base/parallel.h"
#include "host/ops/uv/layout_board.h"

namespace host::ops::flat {
namespace {

constexpr std::int32_t kCoarseCells = 512;  ///< across, while the scale is sought
constexpr std::int32_t kFineCells = 2048;   ///< across, for the result

/// The convex hull, counter-clockwise (Andrew 1979).
std::vector<Point> hullOf(const PackShape& shape) {
  std::vector<Point> points;
  for (const auto& t : shape.triangles) points.insert(points.end(), t.begin(), t.end());
  std::sort(points.begin(), points.end(),
            [](Point a, Point b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
  points.erase(std::unique(points.begin(), points.end()), points.end());
  if (points.size() < 3) return points;
  std::vector<Point> hull;
  const auto extend = [&](Point p, std::size_t least) {
    while (hull.size() >= least + 2 && doubleArea(hull[hull.size() - 2], hull.back(), p) <= 0)
      hull.pop_back();
    hull.push_back(p);
  };
  for (const Point& p : points) extend(p, 0);
  const std::size_t lower = hull.size() - 1;
  for (std::size_t i = points.size() - 1; i-- > 0;) extend(points[i], lower);
  hull.pop_back();
  return hull;
}

/// The turn that gives the smallest bounding box; one side of it lies on an edge of the hull.
Point tightTurn(const PackShape& shape) {
  const std::vector<Point> hull = hullOf(shape);
  Point best{1, 0};
  double least = 1e300;
  for (std::size_t i = 0; i < hull.size(); ++i) {
    const Point edge = hull[(i + 1) % hull.size()] - hull[i];
    const double size = length(edge);
    if (!(size > 0)) continue;
    const Point turn{edge.x / size, -edge.y / size};
    Point low{1e300, 1e300}, high{-1e300, -1e300};
    for (const Point& p : hull) {
      const Point q{turn.x * p.x - turn.y * p.y, turn.y * p.x + turn.x * p.y};
      low = {std::min(low.x, q.x), std::min(low.y, q.y)};
      high = {std::max(high.x, q.x), std::max(high.y, q.y)};
    }
    const double area = (high.x - low.x) * (high.y - low.y);
    if (area < least * (1 - 1e-9)) {
      least = area;
      best = turn;
    }
  }
  return best;
}

/// A shape as it is tried: its turns and its size.
struct Item {
  std::vector<Point> turns;
  double size = 0;
};

class Packer {
 public:
  Packer(std::span<const PackShape> shapes, const PackOptions& options)
      : shapes_(shapes), options_(options), items_(shapes.size()), order_(shapes.size()) {
    for (const PackShape& shape : shapes)
      for (const auto& t : shape.triangles) area_ += 0.5 * std::abs(doubleArea(t[0], t[1], t[2]));
    parallelFor(shapes.size(), 64, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) items_[i] = itemOf(shapes[i]);
    });
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::stable_sort(order_.begin(), order_.end(),
                     [&](std::size_t a, std::size_t b) { return items_[a].size > items_[b].size; });
  }

  [[nodiscard]] double area() const { return area_; }

  /// Packs at a scale on a board of so many cells; nothing when it needs more than `most` heights.
  [[nodiscard]] std::optional<Packing> pack(double scale, std::int32_t cells, double most) const {
    const double cell = 1.0 / cells;
    const auto gutter = static_cast<std::int32_t>(std::ceil(options_.gutter * cells - 1e-6));
    const auto width = static_cast<std::int32_t>(std::floor(options_.width * cells + 1e-6));
    Board board(width, static_cast<std::int32_t>(std::ceil(most * cells - 1e-6)), gutter);
    Packing packing;
    packing.scale = scale;
    packing.places.resize(shapes_.size());
    std::int32_t top = 0;
    for (const std::size_t i : order_) {
      if (isCancelled()) return std::nullopt;
      Choice best;
      for (const Point turn : items_[i].turns) {
        CellMask mask = maskOf(i, turn, scale, cell);
        consider(board, std::move(mask), turn, best);
      }
      if (!best.place.exists()) return std::nullopt;
      board.take(best.mask, best.place);
      top = std::max(top, best.place.y + best.mask.height + gutter);
      packing.places[i] = {
          best.turn,
          {best.place.x * cell - best.mask.origin.x, best.place.y * cell - best.mask.origin.y}};
    }
    packing.height = top * cell;
    return packing;
  }

  /// Packs at the scale that is asked for, however high it gets.
  [[nodiscard]] Result<Packing> packFixed() const {
    double widest = 0, sum = 0;
    for (const PackShape& shape : shapes_) {
      const double size = options_.scale * extentOf(shape) + 2 * options_.gutter;
      widest = std::max(widest, size);
      sum += size * size;
    }
    PackOptions wide = options_;
    wide.width = std::max(options_.width, widest);
    const double height = std::max(widest, sum / wide.width) + widest;
    // Cells as fine as memory for the height allows.
    const std::int32_t cells = cellsFor(std::min(kFineCells / wide.width, 1.6e4 / height));
    if (auto packing = Packer(shapes_, wide).pack(options_.scale, cells, height)) return *packing;
    if (isCancelled()) return cancelled();
    return fail("The shells could not be laid out at this scale.");
  }

  /// Seeks the greatest scale that fits into the square: on a coarse board first, then on a fine
  /// one, each time from how high the last packing was.
  [[nodiscard]] Result<Packing> packFitting() const {
    if (!(area_ > 0)) return fail("The shells have no area to lay out.");
    LongWork work("Laying out", 8);
    double scale = std::sqrt(0.6 * options_.width / area_);
    const std::int32_t coarse = cellsFor(kCoarseCells / std::min(1.0, options_.width));
    for (int round = 0; round < 3 && !isCancelled(); ++round, work.advance()) {
      const auto packing = pack(scale, coarse, 2);
      scale *= packing ? std::sqrt(1 / packing->height) : 0.7;
    }
    std::optional<Packing> best;
    const std::int32_t fine = cellsFor(fineCells());
    double tooGreat = 1e300;
    for (int round = 0; round < kMostRounds && !isCancelled(); ++round, work.advance()) {
      const auto packing = pack(scale, fine, 1.25);
      if (packing && packing->height <= 1 + 1e-9) {
        if (!best || packing->scale > best->scale) best = packing;
      } else {
        tooGreat = std::min(tooGreat, scale);
      }
      if (best && round + 1 >= kFineRounds) break;
      // A packing that fits says by how much more would; one that does not, how much less.
      scale *= packing ? std::sqrt(1 / packing->height) : 0.9;
      if (!best && round >= kFineRounds) scale *= 0.97;
      if (best && scale <= best->scale)
        scale = 0.5 * (best->scale + std::min(tooGreat, 1.01 * best->scale));
    }
    if (isCancelled()) return cancelled();
    if (!best)
      return fail("The gaps between {} shells leave no room for the shells.", shapes_.size());
    return *best;
  }

 private:
  static constexpr int kFineRounds = 5, kMostRounds = 40;

  [[nodiscard]] double fineCells() const {
    // Enough for the smaller shells to have a shape; few shells are large and need fewer cells.
    const double count = std::sqrt(static_cast<double>(shapes_.size()));
    const double each = std::clamp(145 * count, 512.0, static_cast<double>(kFineCells));
    return std::clamp(20 * count, each, 2.0 * kFineCells) / std::max(1.0, options_.width);
  }
  /// Cells across a height of 1 of which a whole number makes the gutter.
  [[nodiscard]] std::int32_t cellsFor(double wanted) const {
    if (!(options_.gutter > 0)) return static_cast<std::int32_t>(wanted);
    const double gutter = std::max(1.0, std::round(wanted * options_.gutter));
    return static_cast<std::int32_t>(
        std::clamp(std::floor(gutter / options_.gutter + 1e-6), 64.0, 8192.0));
  }
  [[nodiscard]] static double extentOf(const PackShape& shape) {
    double least = 1e300, most = -1e300, low = 1e300, high = -1e300;
    for (const auto& t : shape.triangles)
      for (const Point& p : t) {
        least = std::min(least, p.x);
        most = std::max(most, p.x);
        low = std::min(low, p.y);
        high = std::max(high, p.y);
      }
    return std::hypot(most - least, high - low);
  }

  struct Choice {
    CellMask mask;
    Point turn;
    Board::Place place;
    double score = 1e300;
  };

  /// Prefers low places, and among those near each other the one that lies closest against what is
  /// there: it wastes less.
  static void consider(const Board& board, CellMask mask, Point turn, Choice& best) {
    constexpr double kBand = 0.3;  ///< of the mask's height
    std::vector<Board::Place> places;
    const double limit = std::min(best.score, 1e9);
    board.places(mask, static_cast<std::int32_t>(kBand * mask.height),
                 static_cast<std::int32_t>(limit) + 1, places);
    Board::Place found;
    for (const Board::Place place : places) {
      const double score = place.y + mask.height * (1 - board.contact(mask, place));
      if (score >= best.score) continue;
      best.score = score;
      found = place;
    }
    if (!found.exists()) return;
    best.place = found;
    best.turn = turn;
    best.mask = std::move(mask);
  }

  [[nodiscard]] Item itemOf(const PackShape& shape) const {
    Item item;
    const Point base = options_.turns == PackOptions::Turns::Free ? tightTurn(shape) : Point{1, 0};
    item.turns.push_back(base);
    if (options_.turns != PackOptions::Turns::None) {
      item.turns.push_back({-base.y, base.x});
      if (!options_.packsBoxes) {
        item.turns.push_back({-base.x, -base.y});
        item.turns.push_back({base.y, -base.x});
      }
    }
    for (const auto& t : shape.triangles) item.size += 0.5 * std::abs(doubleArea(t[0], t[1], t[2]));
    return item;
  }

  [[nodiscard]] CellMask maskOf(std::size_t i, Point turn, double scale, double cell) const {
    const PackPlace place{turn, {}};
    std::vector<std::array<Point, 3>> triangles;
    if (options_.packsBoxes) {
      Point low{1e300, 1e300}, high{-1e300, -1e300};
      for (const auto& t : shapes_[i].triangles)
        for (const Point& p : t) {
          const Point q = place.at(p, scale);
          low = {std::min(low.x, q.x), std::min(low.y, q.y)};
          high = {std::max(high.x, q.x), std::max(high.y, q.y)};
        }
      triangles.push_back({low, {high.x, low.y}, high});
      triangles.push_back({low, high, {low.x, high.y}});
    } else {
      triangles.reserve(shapes_[i].triangles.size());
      for (const auto& t : shapes_[i].triangles)
        triangles.push_back({place.at(t[0], scale), place.at(t[1], scale), place.at(t[2], scale)});
    }
    return touchedCells(triangles, cell);
  }

  std::span<const PackShape> shapes_;
  const PackOptions& options_;
  std::vector<Item> items_;
  std::vector<std::size_t> order_;
  double area_ = 0;
};

}  // namespace

Result<Packing> packShapes(std::span<const PackShape> shapes, const PackOptions& options) {
  const Packer packer(shapes, options);
  Packing none;
  if (shapes.empty()) return none;
  if (options.scale > 0) return packer.packFixed();
  return packer.packFitting();
}

}  // namespace host::ops::flat
