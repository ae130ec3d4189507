#include "host/mesh/triangulate.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/base/parallel.h"
#include "host/math/frame.h"
#include "host/mesh/normals.h"

namespace host::mesh {

namespace {

constexpr std::size_t kGrain = 20'000;
struct Point2 {
  double x, y;
};

/// Twice the signed area of abc: positive when it turns left.
double turn(const Point2& a, const Point2& b, const Point2& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool coincides(const Point2& a, const Point2& b) {
  return a.x == b.x && a.y == b.y;
}

/// The corners of a loop that may lie in an ear, found by place when there are many.
class ReflexCorners {
 public:
  /// @param points of the loop, which stay where they are
  explicit ReflexCorners(const std::vector<Point2>& points) : points_(points) {
    isGone_.assign(points.size(), 0);
    if (points.size() < kManyPoints) return;
    for (const Point2& p : points) {
      low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y)};
      high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y)};
    }
    across_ = static_cast<Index>(std::sqrt(static_cast<double>(points.size())));
    cells_.resize(at(across_) * at(across_));
  }
  [[nodiscard]] bool isEmpty() const { return all_.empty(); }
  void add(Index i) {
    all_.push_back(i);
    if (across_ > 0)
      cells_[cellOf(columnOf(points_[at(i)].x), rowOf(points_[at(i)].y))].push_back(i);
  }
  void drop(Index i) { isGone_[at(i)] = 1; }

  /// Whether none of them lies in a triangle, corners in places of its own corners left out. A
  /// loop that crosses itself everywhere uses up the looking; then none counts.
  [[nodiscard]] bool areOutside(const Point2& a, const Point2& b, const Point2& c) {
    if (looked_ > kMostLooks * points_.size()) return true;
    if (across_ == 0) return areOutside(all_, a, b, c);
    const Index left = columnOf(std::min({a.x, b.x, c.x})),
                right = columnOf(std::max({a.x, b.x, c.x}));
    const Index low = rowOf(std::min({a.y, b.y, c.y})), high = rowOf(std::max({a.y, b.y, c.y}));
    for (Index row = low; row <= high; ++row)
      for (Index column = left; column <= right; ++column)
        if (!areOutside(cells_[cellOf(column, row)], a, b, c)) return false;
    return true;
  }

 private:
  static constexpr std::size_t kManyPoints = 256;
  static constexpr std::size_t kMostLooks = 400;  ///< a point of the loop

  [[nodiscard]] bool areOutside(std::vector<Index>& some, const Point2& a, const Point2& b,
                                const Point2& c) {
    looked_ += some.size() + 1;
    std::size_t kept = 0;
    bool isEmpty = true;
    for (std::size_t k = 0; k < some.size(); ++k) {
      const Index r = some[k];
      if (isGone_[at(r)]) continue;
      some[kept++] = r;
      const Point2& p = points_[at(r)];
      if (!isEmpty || coincides(p, a) || coincides(p, b) || coincides(p, c)) continue;
      isEmpty = turn(a, b, p) < 0 || turn(b, c, p) < 0 || turn(c, a, p) < 0;
    }
    some.resize(kept);
    return isEmpty;
  }
  [[nodiscard]] Index stepOf(double x, double low, double high) const {
    const double part = high > low ? (x - low) / (high - low) * across_ : 0;
    return part >= 0 ? std::min(across_ - 1, static_cast<Index>(part)) : 0;
  }
  [[nodiscard]] Index columnOf(double x) const { return stepOf(x, low_.x, high_.x); }
  [[nodiscard]] Index rowOf(double y) const { return stepOf(y, low_.y, high_.y); }
  [[nodiscard]] std::size_t cellOf(Index column, Index row) const {
    return at(row) * at(across_) + at(column);
  }

  const std::vector<Point2>& points_;
  std::vector<Index> all_;
  std::vector<std::vector<Index>> cells_;
  std::vector<std::uint8_t> isGone_;
  Point2 low_{1e300, 1e300}, high_{-1e300, -1e300};
  Index across_ = 0;
  std::size_t looked_ = 0;
};

std::vector<Point2> flattened(std::span<const Vec3> loop, const Vec3& normal) {
  const math::Frame frame = math::frameFromNormal(loop[0], normal);
  std::vector<Point2> points;
  points.reserve(loop.size());
  for (const Vec3& p : loop) {
    const Vec3 q = frame.toLocal(p);
    points.push_back({q.x, q.y});
  }
  return points;
}

/// Cuts ears off one loop; the loop is kept as a ring of links.
class EarClipper {
 public:
  EarClipper(std::span<const Vec3> loop, const Vec3& normal)
      : count_(static_cast<Index>(loop.size())),
        points_(flattened(loop, normal)),
        reflex_(points_) {
    for (Index i = 0; i < count_; ++i) {
      next_.push_back(i + 1 == count_ ? 0 : i + 1);
      previous_.push_back(i == 0 ? count_ - 1 : i - 1);
    }
    for (Index i = 0; i < count_; ++i)
      if (turnAt(i) <= 0) reflex_.add(i);
  }

  [[nodiscard]] bool isConvex() const {
    if (!reflex_.isEmpty()) return false;
    // Turning left everywhere is not enough: a star turns more than once around.
    for (Index i = 1; i + 1 < count_; ++i)
      if (turn(points_[0], points_[at(i)], points_[at(i + 1)]) <= 0) return false;
    return true;
  }

  [[nodiscard]] const std::vector<Point2>& points() const { return points_; }

  void clip(std::vector<LoopTriangle>& out) {
    Index left = count_, i = 0, sinceLast = 0, patience = left;
    while (left > 3) {
      const bool isStuck = sinceLast >= std::min(patience, left);
      if (isStuck || isEar(i)) {
        const Index ear = isStuck ? leastBadEar(i) : i;
        // A loop without ears is crossed or flat: going all around for each cut finds no more.
        if (isStuck) patience = left / 64 + 16;
        sinceLast = 0;
        out.push_back({previous_[at(ear)], ear, next_[at(ear)]});
        remove(ear);
        --left;
        // Going on past the neighbour spreads the cuts; staying would fan from one point into
        // slivers.
        i = next_[at(next_[at(ear)])];
      } else {
        i = next_[at(i)];
        ++sinceLast;
      }
    }
    out.push_back({previous_[at(i)], i, next_[at(i)]});
  }

 private:
  [[nodiscard]] double turnAt(Index i) const {
    return turn(points_[at(previous_[at(i)])], points_[at(i)], points_[at(next_[at(i)])]);
  }

  [[nodiscard]] bool isEar(Index i) {
    if (turnAt(i) <= 0) return false;
    const Point2& a = points_[at(previous_[at(i)])];
    const Point2& b = points_[at(i)];
    const Point2& c = points_[at(next_[at(i)])];
    return reflex_.areOutside(a, b, c);
  }

  /// What to cut when nothing is an ear: a flat corner if there is one, else the one that turns
  /// left most.
  [[nodiscard]] Index leastBadEar(Index from) const {
    Index best = from;
    double bestTurn = -1e300;
    Index i = from;
    do {
      const double t = turnAt(i);
      if (t == 0) return i;
      if (t > bestTurn) {
        bestTurn = t;
        best = i;
      }
      i = next_[at(i)];
    } while (i != from);
    return best;
  }

  void remove(Index i) {
    next_[at(previous_[at(i)])] = next_[at(i)];
    previous_[at(next_[at(i)])] = previous_[at(i)];
    reflex_.drop(i);
    // A neighbour that was convex can turn reflex only when the cut was no true ear.
    for (Index n : {previous_[at(i)], next_[at(i)]})
      if (turnAt(n) <= 0) reflex_.add(n);
  }

  Index count_;
  std::vector<Point2> points_;
  std::vector<Index> next_, previous_;
  ReflexCorners reflex_;
};

void fan(Index count, std::vector<LoopTriangle>& out) {
  for (Index i = 1; i + 1 < count; ++i) out.push_back({0, i, i + 1});
}

constexpr std::size_t kMostWarped = 32;  ///< points of a loop whose triangulations are compared

/// Whether points stand off the plane by more than a hundredth of the loop's size.
bool isWarped(std::span<const Vec3> loop, const Vec3& normal) {
  const Vec3 up = math::normalized(normal);
  double low = 0, high = 0, size = 0;
  for (const Vec3& p : loop) {
    const double height = dot(p - loop[0], up);
    low = std::min(low, height);
    high = std::max(high, height);
    size = std::max(size, math::length(p - loop[0]));
  }
  return high - low > 0.01 * size;
}

/// The triangulation of least area (Klincsek 1980) among those that don't fold over the plane:
/// over a loop that bends it neither cuts off what bulges nor dents it. False when all fold.
bool spanSmoothly(std::span<const Vec3> loop, const std::vector<Point2>& flat,
                  std::vector<LoopTriangle>& out) {
  const std::size_t count = loop.size();
  constexpr double kFolded = 1e300;
  std::array<std::array<double, kMostWarped>, kMostWarped> area{};
  std::array<std::array<std::uint8_t, kMostWarped>, kMostWarped> apex{};
  for (std::size_t reach = 2; reach < count; ++reach)
    for (std::size_t a = 0; a + reach < count; ++a) {
      const std::size_t c = a + reach;
      area[a][c] = kFolded;
      for (std::size_t b = a + 1; b < c; ++b) {
        if (area[a][b] >= kFolded || area[b][c] >= kFolded) continue;
        if (turn(flat[a], flat[b], flat[c]) <= 0) continue;
        const double own = 0.5 * math::length(cross(loop[b] - loop[a], loop[c] - loop[a]));
        const double whole = area[a][b] + area[b][c] + own;
        if (whole >= area[a][c]) continue;
        area[a][c] = whole;
        apex[a][c] = static_cast<std::uint8_t>(b);
      }
    }
  if (area[0][count - 1] >= kFolded) return false;
  std::vector<std::pair<std::size_t, std::size_t>> open{{0, count - 1}};
  while (!open.empty()) {
    const auto [a, c] = open.back();
    open.pop_back();
    if (c - a < 2) continue;
    const std::size_t b = apex[a][c];
    out.push_back({static_cast<Index>(a), static_cast<Index>(b), static_cast<Index>(c)});
    open.emplace_back(a, b);
    open.emplace_back(b, c);
  }
  return true;
}

void triangulateQuad(std::span<const Vec3> p, const Vec3& normal, std::vector<LoopTriangle>& out) {
  const auto isLeft = [&](int a, int b, int c) {
    return dot(cross(p[at(b)] - p[at(a)], p[at(c)] - p[at(a)]), normal) > 0;
  };
  if (!(isLeft(0, 1, 2) && isLeft(0, 2, 3)) && isLeft(1, 2, 3) && isLeft(1, 3, 0)) {
    out.push_back({1, 2, 3});
    out.push_back({1, 3, 0});
  } else {
    fan(4, out);
  }
}

}  // namespace

void triangulateLoop(std::span<const Vec3> loop, const Vec3& normal,
                     std::vector<LoopTriangle>& out) {
  const auto count = static_cast<Index>(loop.size());
  if (count == 4) return triangulateQuad(loop, normal, out);
  if (count <= 3) return fan(count, out);
  EarClipper clipper(loop, normal);
  if (loop.size() <= kMostWarped && isWarped(loop, normal) &&
      spanSmoothly(loop, clipper.points(), out))
    return;
  if (clipper.isConvex())
    fan(count, out);
  else
    clipper.clip(out);
}

std::vector<LoopTriangle> triangulateFace(const Mesh& mesh, FaceId face) {
  std::vector<LoopTriangle> out;
  std::vector<Vec3> loop;
  for (VertexId v : mesh.faceVertices(face)) loop.push_back(mesh.point(v));
  triangulateLoop(loop, faceAreaVector(mesh, face), out);
  return out;
}

Triangulation triangulate(const Mesh& mesh) {
  Triangulation result;
  result.triangles.resize(at(mesh.cornerCount() - 2 * mesh.faceCount()));
  parallelFor(at(mesh.faceCount()), kGrain, [&](std::size_t begin, std::size_t end) {
    std::vector<Vec3> loop;
    std::vector<LoopTriangle> local;
    for (auto f = static_cast<FaceId>(begin); f < static_cast<FaceId>(end); ++f) {
      const CornerId first = mesh.firstCorner(f);
      auto* out = result.triangles.data() + Triangulation::firstTriangle(mesh, f);
      if (mesh.faceSize(f) == 3) {
        *out = {first, first + 1, first + 2};
        continue;
      }
      loop.clear();
      local.clear();
      for (VertexId v : mesh.faceVertices(f)) loop.push_back(mesh.point(v));
      triangulateLoop(loop, faceAreaVector(mesh, f), local);
      for (const LoopTriangle& t : local) *out++ = {first + t[0], first + t[1], first + t[2]};
    }
  });
  return result;
}

}  // namespace host::mesh
