#include "host/mesh/triangulate.h"

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

/// Cuts ears off one loop; the loop is kept as a ring of links.
class EarClipper {
 public:
  EarClipper(std::span<const Vec3> loop, const Vec3& normal)
      : count_(static_cast<Index>(loop.size())) {
    const math::Frame frame = math::frameFromNormal(loop[0], normal);
    for (const Vec3& p : loop) {
      const Vec3 q = frame.toLocal(p);
      points_.push_back({q.x, q.y});
    }
    for (Index i = 0; i < count_; ++i) {
      next_.push_back(i + 1 == count_ ? 0 : i + 1);
      previous_.push_back(i == 0 ? count_ - 1 : i - 1);
    }
    for (Index i = 0; i < count_; ++i)
      if (turnAt(i) <= 0) reflex_.push_back(i);
    isGone_.assign(at(count_), 0);
  }

  [[nodiscard]] bool isConvex() const {
    if (!reflex_.empty()) return false;
    // Turning left everywhere is not enough: a star turns more than once around.
    for (Index i = 1; i + 1 < count_; ++i)
      if (turn(points_[0], points_[at(i)], points_[at(i + 1)]) <= 0) return false;
    return true;
  }

  void clip(std::vector<LoopTriangle>& out) {
    Index left = count_, i = 0, sinceLast = 0;
    while (left > 3) {
      if (isEar(i) || sinceLast >= left) {
        const Index ear = sinceLast >= left ? leastBadEar(i) : i;
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
    std::size_t kept = 0;
    bool isEmpty = true;
    for (std::size_t k = 0; k < reflex_.size(); ++k) {
      const Index r = reflex_[k];
      if (isGone_[at(r)]) continue;
      reflex_[kept++] = r;
      const Point2& p = points_[at(r)];
      if (!isEmpty || coincides(p, a) || coincides(p, b) || coincides(p, c)) continue;
      isEmpty = turn(a, b, p) < 0 || turn(b, c, p) < 0 || turn(c, a, p) < 0;
    }
    reflex_.resize(kept);
    return isEmpty;
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
    isGone_[at(i)] = 1;
    // A neighbour that was convex can turn reflex only when the cut was no true ear.
    for (Index n : {previous_[at(i)], next_[at(i)]})
      if (turnAt(n) <= 0) reflex_.push_back(n);
  }

  Index count_;
  std::vector<Point2> points_;
  std::vector<Index> next_, previous_, reflex_;
  std::vector<std::uint8_t> isGone_;
};

void fan(Index count, std::vector<LoopTriangle>& out) {
  for (Index i = 1; i + 1 < count; ++i) out.push_back({0, i, i + 1});
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
