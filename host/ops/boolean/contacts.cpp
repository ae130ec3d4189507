// What two triangles of an arrangement share.
#include <algorithm>

#include "host/ops/boolean/arrangement.h"

namespace host::ops {

namespace {

constexpr std::size_t after(std::size_t i) {
  return i == 2 ? 0 : i + 1;
}

bool isOutside(const std::array<int, 3>& sides) {
  return sides[0] < 0 || sides[1] < 0 || sides[2] < 0;
}

void keepDistinct(std::vector<PointId>& points) {
  std::sort(points.begin(), points.end());
  points.erase(std::unique(points.begin(), points.end()), points.end());
}

}  // namespace

void Arrangement::meet(Index one, Index two) {
  const FaceTriangle &t = triangles_[at(one)], &u = triangles_[at(two)];
  if (t.isFlat || u.isFlat) return;
  // The heights of each one's corners over the other's plane.
  const auto heights = [&](const FaceTriangle& of, const FaceTriangle& over, Int128* result) {
    int positive = 0, negative = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      result[i] = orient3d(points_.grid(over.points[0]), points_.grid(over.points[1]),
                           points_.grid(over.points[2]), points_.grid(of.points[i]));
      positive += result[i] > 0;
      negative += result[i] < 0;
    }
    return std::pair(positive, negative);
  };
  Int128 ofOne[3], ofTwo[3];
  const auto [above, below] = heights(t, u, ofOne);
  if (above == 3 || below == 3) return;
  if (above + below == 0) {
    meetInPlane(one, two);
    return;
  }
  const auto [otherAbove, otherBelow] = heights(u, t, ofTwo);
  if (otherAbove == 3 || otherBelow == 3) return;
  PointList found;
  meetAcross(one, ofOne, two, found);
  meetAcross(two, ofTwo, one, found);
  keepDistinct(found);
  for (const PointId p : found) markContact(p);
  if (found.size() < 2) return;
  addLine(one, found[0], found[1], two, -1);
  addLine(two, found[0], found[1], one, -1);
}

/// Finds where the border of `cut` goes through `by`.
void Arrangement::meetAcross(Index cut, const Int128* heights, Index by, PointList& found) {
  const FaceTriangle t = triangles_[at(cut)], u = triangles_[at(by)];
  for (std::size_t i = 0; i < 3; ++i) {
    if (heights[i] != 0) continue;
    const std::array<int, 3> sides = sidesInPlane(t.points[i], by);
    if (isOutside(sides)) continue;
    noteInside(t.points[i], by, sides);
    found.push_back(t.points[i]);
  }
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t j = after(i);
    if (signOf(heights[i]) * signOf(heights[j]) >= 0) continue;
    const PointId a = t.points[i], b = t.points[j];
    std::array<int, 3> sides{};
    const int direction = heights[i] < 0 ? 1 : -1;
    for (std::size_t k = 0; k < 3; ++k)
      sides[k] = direction * signOf(orient3d(points_.grid(a), points_.grid(u.points[k]),
                                             points_.grid(u.points[after(k)]), points_.grid(b)));
    if (isOutside(sides)) continue;
    const PointId p = points_.onEdge(a, b, heights[i], heights[j]);
    noteOnEdge(p, a, b);
    noteInside(p, by, sides);
    found.push_back(p);
  }
}

/// On which side of each edge a point of its plane lies: positive inside. Edge k goes from corner k
/// to the next.
std::array<int, 3> Arrangement::sidesInPlane(PointId p, Index triangle) const {
  const FaceTriangle& t = triangles_[at(triangle)];
  std::array<int, 3> sides{};
  for (std::size_t k = 0; k < 3; ++k) {
    const int side = points_.turn(t.points[k], t.points[after(k)], p, t.axis);
    sides[k] = t.isTurned ? -side : side;
  }
  return sides;
}

/// Records a point that lies in a triangle, not outside of any of its edges.
void Arrangement::noteInside(PointId p, Index triangle, const std::array<int, 3>& sides) {
  const FaceTriangle& t = triangles_[at(triangle)];
  const auto zeros = std::count(sides.begin(), sides.end(), 0);
  if (zeros >= 2) return;  // a corner
  if (zeros == 0) {
    PointList& points = cutsOf(triangle).points;
    if (points.empty() || points.back() != p) points.push_back(p);
    return;
  }
  const auto k = static_cast<std::size_t>(std::find(sides.begin(), sides.end(), 0) - sides.begin());
  noteOnEdge(p, t.points[k], t.points[after(k)]);
}

void Arrangement::noteOnEdge(PointId p, PointId a, PointId b) {
  PointList& list = edgePoints_[pairKey(a, b)];
  if (std::find(list.begin(), list.end(), p) == list.end()) list.push_back(p);
}

void Arrangement::addLine(Index triangle, PointId a, PointId b, Index other, int edge) {
  const auto [place, isNew] =
      segmentOf_.try_emplace(pairKey(a, b), static_cast<Index>(segments_.size()));
  if (isNew) segments_.push_back({a, b, {}});
  std::vector<Line>& lines = cutsOf(triangle).lines;
  const Index segment = place->second;
  for (const Line& line : lines)
    if (line.segment == segment) return;
  lines.push_back({segment, other, edge});
}

void Arrangement::meetInPlane(Index one, Index two) {
  bool touches = false;
  for (const auto& [of, in] : {std::pair(one, two), std::pair(two, one)})
    for (const PointId p : triangles_[at(of)].points) {
      const std::array<int, 3> sides = sidesInPlane(p, in);
      if (isOutside(sides)) continue;
      noteInside(p, in, sides);
      markContact(p);
      touches = true;
    }
  const std::size_t before = contactCrossings_.size();
  crossEdges(one, two);
  if (!touches && contactCrossings_.size() == before) return;
  drawEdges(one, two);
  drawEdges(two, one);
  contactCrossings_.clear();
  cutsOf(one).coplanar.push_back(two);
  cutsOf(two).coplanar.push_back(one);
}

/// Finds the points where edges of two triangles in one plane cross.
void Arrangement::crossEdges(Index one, Index two) {
  const FaceTriangle t = triangles_[at(one)], u = triangles_[at(two)];
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t k = 0; k < 3; ++k) {
      const PointId a = t.points[i], b = t.points[after(i)], c = u.points[k],
                    d = u.points[after(k)];
      const auto turn = [&](PointId p, PointId q, PointId r) {
        return orient2d(points_.grid(p), points_.grid(q), points_.grid(r), t.axis);
      };
      const Int128 atA = turn(c, d, a), atB = turn(c, d, b);
      if (signOf(atA) * signOf(atB) >= 0) continue;
      if (signOf(turn(a, b, c)) * signOf(turn(a, b, d)) >= 0) continue;
      const PointId p = points_.onEdge(a, b, atA, atB);
      noteOnEdge(p, a, b);
      noteOnEdge(p, c, d);
      markContact(p);
      contactCrossings_.push_back({p, static_cast<int>(i), static_cast<int>(k), one});
    }
}

/// Draws the edges of one triangle as far as they lie in another one of the same plane.
void Arrangement::drawEdges(Index of, Index in) {
  const FaceTriangle t = triangles_[at(of)], u = triangles_[at(in)];
  for (std::size_t i = 0; i < 3; ++i) {
    const PointId a = t.points[i], b = t.points[after(i)];
    PointList on;
    for (const PointId p : {a, b})
      if (!isOutside(sidesInPlane(p, in))) on.push_back(p);
    for (const PointId p : u.points)
      if (points_.turn(a, b, p, t.axis) == 0 && points_.isBetween(p, a, b)) on.push_back(p);
    for (const Crossing& crossing : contactCrossings_)
      if ((crossing.one == of ? crossing.edgeOfOne : crossing.edgeOfTwo) == static_cast<int>(i))
        on.push_back(crossing.point);
    keepDistinct(on);
    if (on.size() >= 2) addLine(in, on[0], on[1], of, static_cast<int>(i));
  }
}

/// The plane through a line that is not the triangle's own.
ExactPlane Arrangement::planeOf(const Line& line, Index in) const {
  const FaceTriangle &other = triangles_[at(line.other)], &own = triangles_[at(in)];
  const auto normalOf = [&](const FaceTriangle& t) {
    return gridNormal(points_.grid(t.points[0]), points_.grid(t.points[1]),
                      points_.grid(t.points[2]));
  };
  if (line.edge < 0) {
    const GridVector n = normalOf(other);
    return planeThrough(points_.grid(other.points[0]), {n[0], n[1], n[2]});
  }
  const auto i = at(line.edge);
  const GridPoint &a = points_.grid(other.points[i]), &b = points_.grid(other.points[after(i)]);
  const GridVector n = normalOf(own);
  std::array<ExactInteger, 3> across;
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t l = after(k), m = after(l);
    across[k] = ExactInteger(b[l] - a[l]) * ExactInteger(n[m]) -
                ExactInteger(b[m] - a[m]) * ExactInteger(n[l]);
  }
  return planeThrough(a, across);
}

/// Puts points where lines in a triangle cross or touch, which they do where the other mesh meets
/// itself. A sweep along the triangle.
void Arrangement::crossLines(Index triangle) {
  const std::vector<Line> lines = cuts_.at(triangle).lines;
  if (lines.empty()) return;
  struct Span {
    double from, to;
    const Line* line;
  };
  const int axis = (triangles_[at(triangle)].axis + 1) % 3;
  std::vector<Span> spans;
  for (const Line& line : lines) {
    const Segment& segment = segments_[at(line.segment)];
    const double a = points_.near(segment.a)[axis], b = points_.near(segment.b)[axis];
    spans.push_back({std::min(a, b) - 1, std::max(a, b) + 1, &line});
  }
  std::sort(spans.begin(), spans.end(),
            [](const Span& a, const Span& b) { return a.from < b.from; });
  for (std::size_t i = 0; i < spans.size(); ++i)
    for (std::size_t k = i + 1; k < spans.size() && spans[k].from <= spans[i].to; ++k)
      crossPair(triangle, *spans[i].line, *spans[k].line);
  touchLines(triangle, lines);
}

/// Puts the points where the other mesh only touches a triangle on the lines that they lie on.
void Arrangement::touchLines(Index triangle, const std::vector<Line>& lines) {
  PointList ends, lone;
  for (const Line& line : lines) {
    ends.push_back(segments_[at(line.segment)].a);
    ends.push_back(segments_[at(line.segment)].b);
  }
  keepDistinct(ends);
  for (const PointId p : cuts_.at(triangle).points)
    if (!std::binary_search(ends.begin(), ends.end(), p)) lone.push_back(p);
  const int axis = triangles_[at(triangle)].axis;
  for (const PointId p : lone)
    for (const Line& line : lines) {
      Segment& segment = segments_[at(line.segment)];
      if (points_.turn(segment.a, segment.b, p, axis) == 0 &&
          points_.isBetween(p, segment.a, segment.b))
        segment.between.push_back(p);
    }
}

void Arrangement::crossPair(Index triangle, const Line& one, const Line& two) {
  const Segment &s = segments_[at(one.segment)], &r = segments_[at(two.segment)];
  const int axis = triangles_[at(triangle)].axis;
  const int c = points_.turn(s.a, s.b, r.a, axis), d = points_.turn(s.a, s.b, r.b, axis);
  if (c * d > 0) return;
  const int a = points_.turn(r.a, r.b, s.a, axis), b = points_.turn(r.a, r.b, s.b, axis);
  if (a * b > 0) return;
  const auto put = [&](PointId p, Index segment) {
    markContact(p);
    PointList& between = segments_[at(segment)].between;
    if (std::find(between.begin(), between.end(), p) == between.end()) between.push_back(p);
  };
  if (a * b < 0 && c * d < 0) {
    const FaceTriangle& t = triangles_[at(triangle)];
    const GridVector n =
        gridNormal(points_.grid(t.points[0]), points_.grid(t.points[1]), points_.grid(t.points[2]));
    const ExactPlane own = planeThrough(points_.grid(t.points[0]), {n[0], n[1], n[2]});
    const PointId p = points_.add(commonPoint(own, planeOf(one, triangle), planeOf(two, triangle)));
    put(p, one.segment);
    put(p, two.segment);
    return;
  }
  const PointId ofOne[] = {s.a, s.b}, ofTwo[] = {r.a, r.b};
  const int sidesOfOne[] = {a, b}, sidesOfTwo[] = {c, d};
  const PointId oneFrom = s.a, oneTo = s.b, twoFrom = r.a, twoTo = r.b;
  for (std::size_t i = 0; i < 2; ++i) {
    if (sidesOfOne[i] == 0 && points_.isBetween(ofOne[i], twoFrom, twoTo))
      put(ofOne[i], two.segment);
    if (sidesOfTwo[i] == 0 && points_.isBetween(ofTwo[i], oneFrom, oneTo))
      put(ofTwo[i], one.segment);
  }
}

}  // namespace host::ops
