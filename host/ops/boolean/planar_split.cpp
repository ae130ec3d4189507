#include "host/ops/boolean/planar_split.h"

#include <deque>
#include <unordered_map>

namespace host::ops {

namespace {

constexpr std::size_t next(std::size_t i) {
  return i == 2 ? 0 : i + 1;
}
constexpr std::size_t previous(std::size_t i) {
  return i == 0 ? 2 : i - 1;
}

/// Side i of a triangle goes from corner i + 1 to corner i + 2.
struct Cell {
  std::array<PointId, 3> corners;
  std::array<Index, 3> across;  ///< the triangle beyond each side; kNone at the border
};

struct Side {
  Index cell = kNone;
  std::size_t side = 0;
};

class Splitter {
 public:
  Splitter(const ExactPoints& points, const PlanarSplit& split)
      : points_(points), axis_(split.axis), sign_(split.isTurned ? -1 : 1) {
    cells_.push_back({split.corners, {kNone, kNone, kNone}});
    for (const PointId p : split.corners) cellOf_[p] = 0;
  }

  void insert(PointId p) {
    if (cellOf_.contains(p)) return;
    const auto [cell, side] = locate(p);
    if (cell == kNone) return;  // not in the triangle: the caller's fault, and harmless
    if (side == 3)
      splitCell(cell, p);
    else
      splitSide({cell, side}, p);
    legalize(p);
  }

  void draw(PointId from, PointId to, std::vector<PointPair>& done) {
    while (from != to) {
      const PointId reached = drawPart(from, to);
      if (reached == kNone) return;
      done.push_back({from, reached});
      from = reached;
    }
  }

  [[nodiscard]] std::vector<std::array<PointId, 3>> triangles() const {
    std::vector<std::array<PointId, 3>> result;
    result.reserve(cells_.size());
    for (const Cell& cell : cells_) result.push_back(cell.corners);
    return result;
  }

 private:
  [[nodiscard]] int turn(PointId a, PointId b, PointId c) const {
    return sign_ * points_.turn(a, b, c, axis_);
  }

  struct Location {
    Index cell;
    std::size_t side;  ///< 3: inside
  };
  /// Where a point lies in a cell; kNone when it does not.
  [[nodiscard]] Location test(Index index, PointId p, std::size_t& outside) const {
    const Cell& cell = cells_[at(index)];
    Location found{index, 3};
    for (std::size_t i = 0; i < 3; ++i) {
      const int side = turn(cell.corners[next(i)], cell.corners[previous(i)], p);
      if (side < 0) {
        outside = i;
        return {kNone, 0};
      }
      if (side == 0) found.side = i;
    }
    return found;
  }

  [[nodiscard]] Location locate(PointId p) const {
    Index cell = lastCell_;
    for (std::size_t step = 0; step < 2 * cells_.size() + 8; ++step) {
      std::size_t outside = 0;
      const Location found = test(cell, p, outside);
      if (found.cell != kNone) return found;
      if (cells_[at(cell)].across[outside] == kNone) break;
      cell = cells_[at(cell)].across[outside];
    }
    // The walk went round in circles.
    for (std::size_t i = 0; i < cells_.size(); ++i) {
      std::size_t outside = 0;
      const Location found = test(static_cast<Index>(i), p, outside);
      if (found.cell != kNone) return found;
    }
    return {kNone, 0};
  }

  void setAcross(Index cell, Index old, Index now) {
    if (cell == kNone) return;
    for (Index& other : cells_[at(cell)].across)
      if (other == old) {
        other = now;
        return;
      }
  }

  Index add(PointId a, PointId b, PointId c, Index acrossA, Index acrossB, Index acrossC) {
    cells_.push_back({{a, b, c}, {acrossA, acrossB, acrossC}});
    return static_cast<Index>(cells_.size()) - 1;
  }

  void noteCorners(Index cell) {
    for (const PointId p : cells_[at(cell)].corners) cellOf_[p] = cell;
    lastCell_ = cell;
  }

  void splitCell(Index index, PointId p) {
    const Cell old = cells_[at(index)];
    const auto [a, b, c] = old.corners;
    const Index second = static_cast<Index>(cells_.size()), third = second + 1;
    cells_[at(index)] = {{p, b, c}, {old.across[0], second, third}};
    add(p, c, a, old.across[1], third, index);
    add(p, a, b, old.across[2], index, second);
    setAcross(old.across[1], index, second);
    setAcross(old.across[2], index, third);
    for (const Index cell : {index, second, third}) {
      noteCorners(cell);
      suspects_.push_back({cell, 0});
    }
  }

  void splitSide(Side where, PointId p) {
    const Cell old = cells_[at(where.cell)];
    const PointId a = old.corners[where.side], b = old.corners[next(where.side)],
                  c = old.corners[previous(where.side)];
    const Index beyond = old.across[where.side], acrossB = old.across[next(where.side)],
                acrossC = old.across[previous(where.side)];
    // Each half keeps the new point first, so that its outer side is side 0.
    const auto half = static_cast<Index>(cells_.size());
    cells_[at(where.cell)] = {{p, a, b}, {acrossC, kNone, half}};
    add(p, c, a, acrossB, where.cell, kNone);
    setAcross(acrossB, where.cell, half);
    suspects_.push_back({where.cell, 0});
    suspects_.push_back({half, 0});
    if (beyond != kNone) {
      const Cell other = cells_[at(beyond)];
      std::size_t i = 0;
      while (other.across[i] != where.cell) ++i;
      const PointId d = other.corners[i];
      const Index acrossNext = other.across[next(i)], acrossPrevious = other.across[previous(i)];
      // The other cell is (d, c, b).
      const auto otherHalf = static_cast<Index>(cells_.size());
      cells_[at(beyond)] = {{p, d, c}, {acrossPrevious, half, otherHalf}};
      add(p, b, d, acrossNext, beyond, where.cell);
      setAcross(acrossNext, beyond, otherHalf);
      cells_[at(where.cell)].across[1] = otherHalf;
      cells_[at(half)].across[2] = beyond;
      suspects_.push_back({beyond, 0});
      suspects_.push_back({otherHalf, 0});
      noteCorners(beyond);
      noteCorners(otherHalf);
    }
    noteCorners(half);
    noteCorners(where.cell);
  }

  /// Turns the diagonal of the two cells at a side; the corner that faced it stays first in both.
  /// @return false when they are not strictly convex together
  bool flip(Side at_, Side* made) {
    const Cell one = cells_[at(at_.cell)];
    const Index beyond = one.across[at_.side];
    if (beyond == kNone) return false;
    const Cell two = cells_[at(beyond)];
    std::size_t i = 0;
    while (two.across[i] != at_.cell) ++i;
    const PointId p = one.corners[at_.side], b = one.corners[next(at_.side)],
                  c = one.corners[previous(at_.side)], d = two.corners[i];
    if (turn(p, b, d) <= 0 || turn(p, d, c) <= 0) return false;
    const Index acrossB = one.across[next(at_.side)], acrossC = one.across[previous(at_.side)];
    const Index acrossBd = two.across[next(i)], acrossDc = two.across[previous(i)];
    // two is (d, c, b): side next(i) is b-d, side previous(i) is d-c.
    cells_[at(at_.cell)] = {{p, b, d}, {acrossBd, beyond, acrossC}};
    cells_[at(beyond)] = {{p, d, c}, {acrossDc, acrossB, at_.cell}};
    setAcross(acrossBd, beyond, at_.cell);
    setAcross(acrossB, at_.cell, beyond);
    noteCorners(at_.cell);
    noteCorners(beyond);
    if (made) *made = {beyond, 2};
    return true;
  }

  /// Whether `d` lies clearly inside of the circle through abc.
  [[nodiscard]] bool isInCircle(PointId a, PointId b, PointId c, PointId d) const {
    const int i = (axis_ + 1) % 3, j = (axis_ + 2) % 3;
    const math::Vec3 o = points_.near(d);
    double x[3], y[3], s[3];
    const PointId ids[3] = {a, b, c};
    for (int k = 0; k < 3; ++k) {
      const math::Vec3 p = points_.near(ids[k]);
      x[k] = p[i] - o[i];
      y[k] = p[j] - o[j];
      s[k] = x[k] * x[k] + y[k] * y[k];
    }
    const double one = s[0] * (x[1] * y[2] - x[2] * y[1]), two = s[1] * (x[2] * y[0] - x[0] * y[2]),
                 three = s[2] * (x[0] * y[1] - x[1] * y[0]);
    return sign_ * (one + two + three) > 1e-9 * (std::abs(one) + std::abs(two) + std::abs(three));
  }

  void legalize(PointId p) {
    std::size_t budget = 64 + 8 * cells_.size();
    while (!suspects_.empty()) {
      const Side side = suspects_.back();
      suspects_.pop_back();
      const Cell& cell = cells_[at(side.cell)];
      const Index beyond = cell.across[0];
      if (cell.corners[0] != p || beyond == kNone || budget == 0) continue;
      const Cell& other = cells_[at(beyond)];
      std::size_t i = 0;
      while (other.across[i] != side.cell) ++i;
      if (!isInCircle(p, cell.corners[1], cell.corners[2], other.corners[i])) continue;
      if (!flip({side.cell, 0}, nullptr)) continue;
      --budget;
      suspects_.push_back({side.cell, 0});
      suspects_.push_back({beyond, 0});
    }
  }

  [[nodiscard]] std::size_t cornerOf(Index cell, PointId p) const {
    std::size_t i = 0;
    while (cells_[at(cell)].corners[i] != p) ++i;
    return i;
  }

  /// All cells around a point.
  [[nodiscard]] std::vector<Index> around(PointId p) const {
    const Index start = cellOf_.at(p);
    std::vector<Index> found;
    Index cell = start;
    do {  // turning one way, up to the border or all round
      found.push_back(cell);
      cell = cells_[at(cell)].across[next(cornerOf(cell, p))];
    } while (cell != kNone && cell != start);
    if (cell == start) return found;
    for (cell = cells_[at(start)].across[previous(cornerOf(start, p))]; cell != kNone;
         cell = cells_[at(cell)].across[previous(cornerOf(cell, p))])
      found.push_back(cell);
    return found;
  }

  /// Whether `to` lies ahead on the ray from `from` through `through`, all on one line.
  [[nodiscard]] bool isAhead(PointId from, PointId through, PointId to) const {
    return through == to || points_.isBetween(through, from, to);
  }

  /// Makes the line an edge up to the first point on it. @return that point
  PointId drawPart(PointId from, PointId to) {
    Side crossing;
    for (const Index cell : around(from)) {
      const std::size_t i = cornerOf(cell, from);
      const PointId b = cells_[at(cell)].corners[next(i)],
                    c = cells_[at(cell)].corners[previous(i)];
      const int left = turn(from, b, to), right = turn(from, to, c);
      if (left == 0 && isAhead(from, b, to)) return b;
      if (right == 0 && isAhead(from, c, to)) return c;
      if (left > 0 && right > 0) crossing = {cell, i};
    }
    if (crossing.cell == kNone) return kNone;
    std::deque<PointPair> crossed;
    PointId reached = kNone;
    while (reached == kNone) {
      const Cell& cell = cells_[at(crossing.cell)];
      const PointId right = cell.corners[next(crossing.side)],
                    left = cell.corners[previous(crossing.side)];
      crossed.push_back({right, left});
      const Index beyond = cell.across[crossing.side];
      if (beyond == kNone) return kNone;
      std::size_t i = 0;
      while (cells_[at(beyond)].across[i] != crossing.cell) ++i;
      const PointId far = cells_[at(beyond)].corners[i];
      const int side = turn(from, to, far);
      // The cell beyond is (far, left, right).
      if (side == 0)
        reached = far;
      else
        crossing = {beyond, side > 0 ? cornerOf(beyond, left) : cornerOf(beyond, right)};
    }
    swapAway(from, reached, std::move(crossed));
    return reached;
  }

  /// Flips the edges that cross the line from a to b until none does.
  void swapAway(PointId a, PointId b, std::deque<PointPair> crossed) {
    std::size_t budget = 16 + 4 * crossed.size() * crossed.size();
    while (!crossed.empty() && budget-- > 0) {
      const PointPair edge = crossed.front();
      crossed.pop_front();
      const Side side = find(edge.first, edge.second);
      Side made;
      if (side.cell == kNone) continue;
      if (!flip(side, &made)) {
        crossed.push_back(edge);
        continue;
      }
      const Cell& cell = cells_[at(made.cell)];
      const PointId p = cell.corners[0], d = cell.corners[1];
      if (p == a || p == b || d == a || d == b) continue;
      if (turn(a, b, p) * turn(a, b, d) < 0) crossed.push_back({p, d});
    }
  }

  [[nodiscard]] Side find(PointId a, PointId b) const {
    for (const Index cell : around(a)) {
      const std::size_t i = cornerOf(cell, a);
      if (cells_[at(cell)].corners[next(i)] == b) return {cell, previous(i)};
      if (cells_[at(cell)].corners[previous(i)] == b) return {cell, next(i)};
    }
    return {};
  }

  const ExactPoints& points_;
  int axis_, sign_;
  std::vector<Cell> cells_;
  std::unordered_map<PointId, Index> cellOf_;  ///< one of the cells at each point
  std::vector<Side> suspects_;
  Index lastCell_ = 0;
};

}  // namespace

PlanarPieces splitPlanar(const ExactPoints& points, const PlanarSplit& split) {
  Splitter splitter(points, split);
  for (const PointId p : split.points) splitter.insert(p);
  PlanarPieces pieces;
  for (const auto& [a, b] : split.lines) splitter.draw(a, b, pieces.lines);
  pieces.triangles = splitter.triangles();
  return pieces;
}

}  // namespace host::ops
