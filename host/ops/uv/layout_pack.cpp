#include "host/ops/uv/layout_pack.h"

#include <algorithm>
#include <numbers>
#include <numeric>
#include <optional>

#include "host/base/cancel.h"
#include "host/base/parallel.h"
#include "host/ops/uv/box_packing.h"
#include "host/ops/uv/layout_settle.h"
#include "host/ops/uv/layout_trial.h"

namespace host::ops::flat {
namespace {

constexpr std::int32_t kCoarseCells = 512;  ///< across, while the scale is sought
constexpr double kMiddleCells = 1024;       ///< across, while orders are tried
constexpr std::int32_t kFineCells = 2048;   ///< across, for the result
constexpr std::size_t kMostSettled = 1500;  ///< shapes; for more it takes too long
constexpr double kAhead = 1.01;             ///< by how much settling is thought to win at least

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
  // A hull of very many edges is round: some of them stand for all.
  constexpr std::size_t kMostEdges = 512;
  const std::vector<Point> hull = hullOf(shape);
  const std::size_t tried = std::min(hull.size(), kMostEdges);
  Point best{1, 0};
  double least = 1e300;
  for (std::size_t k = 0; k < tried; ++k) {
    const std::size_t i = k * hull.size() / tried;
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

double areaOf(const PackShape& shape) {
  double area = 0;
  for (const auto& t : shape.triangles) area += 0.5 * std::abs(doubleArea(t[0], t[1], t[2]));
  return area;
}

double extentOf(const PackShape& shape) {
  Point low{1e300, 1e300}, high{-1e300, -1e300};
  for (const auto& t : shape.triangles)
    for (const Point& p : t) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
  return std::hypot(high.x - low.x, high.y - low.y);
}

/// What shapes are ordered by: what their hulls enclose, so that rings and arcs come before what
/// can lie in them.
double enclosedArea(const PackShape& shape) {
  const std::vector<Point> hull = hullOf(shape);
  double area = 0;
  for (std::size_t i = 1; i + 1 < hull.size(); ++i)
    area += 0.5 * doubleArea(hull[0], hull[i], hull[i + 1]);
  return area;
}

class Packer {
 public:
  Packer(std::span<const PackShape> shapes, const PackOptions& options)
      : shapes_(shapes), options_(options), turns_(shapes.size()), order_(shapes.size()) {
    std::vector<double> sizes(shapes.size());
    parallelFor(shapes.size(), 64, [&](std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        turns_[i] = turnsOf(shapes[i]);
        sizes[i] = enclosedArea(shapes[i]);
      }
    });
    for (const PackShape& shape : shapes) area_ += areaOf(shape);
    for (const PackShape& shape : options.standing) standing_ += areaOf(shape);
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    std::stable_sort(order_.begin(), order_.end(),
                     [&](std::size_t a, std::size_t b) { return sizes[a] > sizes[b]; });
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
    double height = std::max(widest, sum / wide.width) + widest;
    for (const PackShape& shape : options_.standing)
      for (const auto& t : shape.triangles)
        height += std::max({0.0, t[0].y - height, t[1].y - height, t[2].y - height});
    if (!options_.standing.empty()) height += 1;
    // Cells as fine as memory for the height allows.
    const std::int32_t cells = cellsFor(std::min(kFineCells / wide.width, 1.6e4 / height));
    const Packer packer(shapes_, wide);
    if (auto trial = packer.attempt(options_.scale, cells, height, packer.order_))
      return packer.packing(std::move(*trial), options_.scale, cells);
    if (isCancelled()) return cancelled();
    return fail("The shells could not be laid out at this scale.");
  }

  /// Seeks the greatest scale that fits into the square: on a coarse board first, where orders are
  /// tried too, then on a fine one, each time from how high the last packing was.
  [[nodiscard]] Result<Packing> packFitting() const {
    if (!(area_ > 0)) return fail("The shells have no area to lay out.");
    const double room = std::max(options_.width - standing_, 0.02 * options_.width);
    LongWork work("Laying out", 20);
    double scale = std::sqrt(0.6 * room / area_);
    const std::int32_t coarse = cellsFor(kCoarseCells / std::min(1.0, options_.width));
    for (int round = 0; round < 3 && !isCancelled(); ++round, work.advance()) {
      const auto trial = attempt(scale, coarse, 2, order_);
      scale *= trial ? std::sqrt(static_cast<double>(coarse) / trial->top) : 0.7;
    }
    std::optional<Packing> close;
    double fitted = scale;
    if (maySettle()) close = packClose(scale, fitted, work);
    if (isCancelled()) return cancelled();
    if (close && close->scale >= fitted) return *std::move(close);
    // Little was gained by settling: cells will have to do.
    std::vector<std::size_t> order = order_;
    improveOrder(order, scale, work);
    auto packing = seekFine(order, scale, work);
    if (close && (!packing || packing->scale < close->scale)) return *std::move(close);
    return packing;
  }

 private:
  static constexpr int kFineRounds = 3, kMostRounds = 40;
  static constexpr std::size_t kManyShapes = 2000;
  static constexpr std::size_t kBatch = 2;  ///< orders that are tried side by side

  /// How many batches of other orders the number of shapes leaves time for.
  [[nodiscard]] int batches() const {
    if (shapes_.size() < 3) return 0;
    return std::clamp(static_cast<int>(1600 / shapes_.size()), 0, 8);
  }

  /// Lays orders near the first one on a board of middling cells, a little larger than fits, and
  /// lets the two that came out lowest settle.
  /// @param scale at which a coarse board took them; @param fitted set to what cells alone reach
  [[nodiscard]] std::optional<Packing> packClose(double scale, double& fitted,
                                                 LongWork& work) const {
    const std::int32_t cells = cellsFor(settledCells());
    const auto first = attempt(scale, cells, 2, order_);
    if (!first) return std::nullopt;
    fitted = scale * std::sqrt(static_cast<double>(cells) / first->top);
    const bool mayStandHigh = options_.standing.empty();
    scale = (mayStandHigh ? kAhead : 1 / kAhead) * fitted;
    const std::int32_t most = mayStandHigh ? 3 * cells / 2 : cells;
    std::vector<Trial> lowest = lowestTrials(scale, cells, most);
    work.advance(3);
    const std::uint64_t effort =
        std::clamp<std::uint64_t>(100'000 * shapes_.size(), 4'000'000, 60'000'000);
    std::vector<std::optional<Packing>> settledOnes(lowest.size());
    parallelFor(lowest.size(), 1, [&](std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k)
        settledOnes[k] =
            settled(shapes_, options_, packing(std::move(lowest[k]), scale, cells), effort);
    });
    work.advance(5);
    std::optional<Packing> best;
    for (auto& each : settledOnes)
      if (each && (!best || each->scale > best->scale)) best = std::move(each);
    return best;
  }

  /// The two lowest packings of the first order and of some near it, the lowest one first.
  [[nodiscard]] std::vector<Trial> lowestTrials(double scale, std::int32_t cells,
                                                std::int32_t most) const {
    const ShapeMasks masks(shapes_, turns_, scale, 1.0 / cells, false);
    const Board board = boardOf(cells, 1.5);
    std::vector<Trial> lowest;
    const auto keep = [&](std::optional<Trial>&& trial) {
      if (!trial) return;
      const auto place = std::ranges::upper_bound(lowest, trial->cost(), {}, &Trial::cost);
      lowest.insert(place, *std::move(trial));
      if (lowest.size() > kBatch) lowest.pop_back();
    };
    keep(tryOrder(board, masks, order_, 1.0 / cells, most));
    for (int round = 0; round < batches() && !isCancelled(); ++round) {
      const std::vector<std::size_t>& near = lowest.empty() ? order_ : lowest.front().order;
      for (auto& trial : tryNear(board, masks, near, static_cast<std::size_t>(round) * kBatch + 1,
                                 1.0 / cells, most))
        keep(std::move(trial));
    }
    return lowest;
  }

  /// Tries orders near the best one at one scale; then brings the scale to what fits.
  void improveOrder(std::vector<std::size_t>& order, double& scale, LongWork& work) const {
    const int rounds = batches();
    if (rounds == 0) return;
    const std::int32_t cells = cellsFor(std::min(kMiddleCells, fineCells()));
    const ShapeMasks masks(shapes_, turns_, scale, 1.0 / cells, options_.packsBoxes);
    const Board board = boardOf(cells, 1.25);
    auto best = tryOrder(board, masks, order, 1.0 / cells, board.height());
    for (int round = 0; round < rounds && !isCancelled(); ++round) {
      const std::int32_t limit = best ? best->top : board.height();
      auto trials = tryNear(board, masks, order, round * kBatch + 1, 1.0 / cells, limit);
      for (auto& trial : trials)
        if (trial && (!best || trial->cost() < best->cost())) {
          best = std::move(trial);
          order = best->order;
        }
    }
    work.advance(4);
    if (best) scale *= std::sqrt(static_cast<double>(cells) / best->top);
  }

  [[nodiscard]] static std::vector<std::optional<Trial>> tryNear(const Board& board,
                                                                 const ShapeMasks& masks,
                                                                 std::span<const std::size_t> order,
                                                                 std::size_t seed, double cell,
                                                                 std::int32_t limit) {
    std::vector<std::optional<Trial>> trials(kBatch);
    parallelFor(kBatch, 1, [&](std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k)
        trials[k] = tryOrder(board, masks, shuffled(order, static_cast<std::uint32_t>(seed + k)),
                             cell, limit);
    });
    return trials;
  }

  /// @param order that the search begins with; others near it are tried beside it
  [[nodiscard]] Result<Packing> seekFine(std::vector<std::size_t> order, double scale,
                                         LongWork& work) const {
    const std::int32_t cells = cellsFor(fineCells());
    std::optional<Packing> best;
    double tooGreat = 1e300;
    const bool triesOthers = batches() > 0;
    for (int round = 0; round < kMostRounds && !isCancelled(); ++round, work.advance()) {
      auto trial =
          triesOthers ? bestNear(order, scale, cells, round) : attempt(scale, cells, 1.25, order);
      if (trial && trial->top <= cells) {
        if (triesOthers) order = trial->order;
        if (!best || scale > best->scale) best = packing(*trial, scale, cells);
      } else {
        tooGreat = std::min(tooGreat, scale);
      }
      if (best && round + 1 >= (shapes_.size() > kManyShapes ? 2 : kFineRounds)) break;
      // A packing that fits says by how much more would; one that does not, how much less.
      scale *= trial ? std::sqrt(static_cast<double>(cells) / trial->top) : 0.9;
      if (!best && round >= kFineRounds) scale *= 0.97;
      if (best && scale <= best->scale)
        scale = 0.5 * (best->scale + std::min(tooGreat, 1.01 * best->scale));
    }
    if (isCancelled()) return cancelled();
    if (!best)
      return fail("The gaps between {} shells leave no room for the shells.", shapes_.size());
    return *best;
  }

  [[nodiscard]] std::optional<Trial> bestNear(std::span<const std::size_t> order, double scale,
                                              std::int32_t cells, int round) const {
    const ShapeMasks masks(shapes_, turns_, scale, 1.0 / cells, options_.packsBoxes);
    const Board board = boardOf(cells, 1.25);
    std::vector<std::optional<Trial>> trials(2);
    parallelFor(trials.size(), 1, [&](std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k) {
        const auto seed = static_cast<std::uint32_t>(1000 + 2 * round);
        const std::vector<std::size_t> tried =
            k == 0 ? std::vector(order.begin(), order.end()) : shuffled(order, seed);
        trials[k] = tryOrder(board, masks, tried, 1.0 / cells, board.height());
      }
    });
    if (!trials[0] || (trials[1] && trials[1]->top < trials[0]->top)) return std::move(trials[1]);
    return std::move(trials[0]);
  }

  [[nodiscard]] std::optional<Trial> attempt(double scale, std::int32_t cells, double most,
                                             std::span<const std::size_t> order) const {
    const ShapeMasks masks(shapes_, turns_, scale, 1.0 / cells, options_.packsBoxes);
    const Board board = boardOf(cells, most);
    return tryOrder(board, masks, order, 1.0 / cells, board.height());
  }

  [[nodiscard]] static Packing packing(Trial trial, double scale, std::int32_t cells) {
    return {scale, static_cast<double>(trial.top) / cells, std::move(trial.places)};
  }

  /// A board of so many cells a height of 1, `most` heights high, with what stands there.
  [[nodiscard]] Board boardOf(std::int32_t cells, double most) const {
    const auto gutter = static_cast<std::int32_t>(std::ceil(options_.gutter * cells - 1e-6));
    const auto width = static_cast<std::int32_t>(std::floor(options_.width * cells + 1e-6));
    Board board(width, static_cast<std::int32_t>(std::ceil(most * cells - 1e-6)), gutter);
    const double cell = 1.0 / cells;
    for (const PackShape& shape : options_.standing) {
      Point low{1e300, 1e300};
      for (const auto& t : shape.triangles)
        for (const Point& p : t) low = {std::min(low.x, p.x), std::min(low.y, p.y)};
      const double x = std::floor(low.x * cells - 0.01), y = std::floor(low.y * cells - 0.01);
      if (!(std::abs(x) < 1e6 && std::abs(y) < 1e6)) continue;  // far away from the square
      const CellMask mask = touchedCells(shape.triangles, cell, Point{x * cell, y * cell});
      board.take(mask, {static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)});
    }
    return board;
  }

  [[nodiscard]] double fineCells() const {
    // Enough for the smaller shells to have a shape; few shells are large and need fewer cells.
    const double count = std::sqrt(static_cast<double>(shapes_.size()));
    const double each = std::clamp(145 * count, 512.0, static_cast<double>(kFineCells));
    return std::clamp(20 * count, each, 2.0 * kFineCells) / std::max(1.0, options_.width);
  }
  /// Whether shapes can push each other: where gaps are wide beside shapes, all of them touch many.
  [[nodiscard]] bool maySettle() const {
    const double size = std::sqrt(0.6 / static_cast<double>(shapes_.size()));
    return shapes_.size() > 1 && shapes_.size() <= kMostSettled && !options_.packsBoxes &&
           options_.gutter < 0.12 * size;
  }
  /// Cells that are fine enough where shapes settle afterwards.
  [[nodiscard]] double settledCells() const {
    const double count = std::sqrt(static_cast<double>(shapes_.size()));
    return std::clamp(72 * count, 384.0, static_cast<double>(kFineCells)) /
           std::max(1.0, options_.width);
  }
  /// Cells across a height of 1 of which a whole number makes the gutter.
  [[nodiscard]] std::int32_t cellsFor(double wanted) const {
    if (!(options_.gutter > 0)) return static_cast<std::int32_t>(wanted);
    const double gutter = std::max(1.0, std::round(wanted * options_.gutter));
    return static_cast<std::int32_t>(
        std::clamp(std::floor(gutter / options_.gutter + 1e-6), 64.0, 8192.0));
  }

  [[nodiscard]] std::vector<Point> turnsOf(const PackShape& shape) const {
    const Point base = options_.turns == PackOptions::Turns::Free ? tightTurn(shape) : Point{1, 0};
    std::vector<Point> turns{base};
    if (options_.turns == PackOptions::Turns::None) return turns;
    turns.push_back({-base.y, base.x});
    if (options_.packsBoxes) return turns;
    turns.push_back({-base.x, -base.y});
    turns.push_back({base.y, -base.x});
    return turns;
  }

  std::span<const PackShape> shapes_;
  const PackOptions& options_;
  std::vector<std::vector<Point>> turns_;
  std::vector<std::size_t> order_;
  double area_ = 0, standing_ = 0;
};

constexpr std::size_t kMostOutlines = 8000;  ///< beyond, boxes in rows have to do

/// The shapes' boxes, each turned to lie on its longer side, in rows.
Result<Packing> packRows(std::span<const PackShape> shapes, const PackOptions& options) {
  std::vector<PackedBox> boxes(shapes.size());
  std::vector<Point> lows(shapes.size());
  Packing packing;
  packing.places.resize(shapes.size());
  parallelFor(shapes.size(), 256, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      PackPlace& place = packing.places[i];
      if (options.turns == PackOptions::Turns::Free) place.turn = tightTurn(shapes[i]);
      const auto measure = [&] {
        Point low{1e300, 1e300}, high{-1e300, -1e300};
        for (const auto& t : shapes[i].triangles)
          for (const Point& p : t) {
            const Point q = place.at(p, 1);
            low = {std::min(low.x, q.x), std::min(low.y, q.y)};
            high = {std::max(high.x, q.x), std::max(high.y, q.y)};
          }
        lows[i] = low;
        boxes[i].width = high.x - low.x;
        boxes[i].height = high.y - low.y;
      };
      measure();
      if (options.turns == PackOptions::Turns::None || boxes[i].width >= boxes[i].height) continue;
      place.turn = {-place.turn.y, place.turn.x};
      measure();
    }
  });
  // The gap is a part of the square, so how wide it is beside the boxes follows from their scale.
  packing.scale = options.scale;
  double gap = options.scale > 0 ? options.gutter / options.scale : 0;
  bool fits = false;
  for (int round = 0; round < 60 && !fits; ++round) {
    const PackedExtent extent = packInSquare(boxes, gap);
    const double side = std::max(extent.width / options.width, extent.height);
    if (!(options.scale > 0)) packing.scale = (1 - 2 * options.gutter) / std::max(side, 1e-300);
    packing.height = packing.scale * extent.height + 2 * options.gutter;
    fits = gap * packing.scale >= options.gutter * (1 - 1e-9);
    if (!fits) gap = 1.0005 * options.gutter / packing.scale;
  }
  if (!fits) return fail("The gaps between {} shells leave no room for the shells.", shapes.size());
  for (std::size_t i = 0; i < shapes.size(); ++i)
    packing.places[i].offset = {options.gutter + packing.scale * (boxes[i].x - lows[i].x),
                                options.gutter + packing.scale * (boxes[i].y - lows[i].y)};
  return packing;
}

}  // namespace

Result<Packing> packShapes(std::span<const PackShape> shapes, const PackOptions& options) {
  if (shapes.empty()) return Packing{};
  if (shapes.size() > kMostOutlines) {
    if (options.standing.empty()) return packRows(shapes, options);
    return fail("More than {} shells can't be laid out around pinned ones.", kMostOutlines);
  }
  const Packer packer(shapes, options);
  if (options.scale > 0) return packer.packFixed();
  return packer.packFitting();
}

}  // namespace host::ops::flat
