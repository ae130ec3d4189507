#include "host/viewport/face_triangles.h"

#include <numeric>
#include <span>

#include "host/base/parallel.h"
#include "host/mesh/normals.h"

namespace host::viewport {

namespace {

using math::Vec3;

struct Point2 {
  double x = 0, y = 0;
};

double turn(const Point2& a, const Point2& b, const Point2& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool inside(const Point2& p, const Point2& a, const Point2& b, const Point2& c) {
  return turn(a, b, p) >= 0 && turn(b, c, p) >= 0 && turn(c, a, p) >= 0;
}

/// Cuts one large face by clipping ears from its projection along the normal.
class EarClipper {
 public:
  void run(const mesh::Mesh& mesh, FaceId face, std::uint32_t* out) {
    project(mesh, face);
    const auto base = static_cast<std::uint32_t>(mesh.firstCorner(face));
    rest_.resize(loop_.size());
    std::iota(rest_.begin(), rest_.end(), 0u);
    while (rest_.size() > 3) {
      const std::size_t ear = findEar();
      out = emit(ear, base, out);
      rest_.erase(rest_.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    emit(1, base, out);
  }

 private:
  void project(const mesh::Mesh& mesh, FaceId face) {
    const Vec3 normal = mesh::faceNormal(mesh, face);
    const Vec3 across = math::normalized(
        math::cross(normal, std::abs(normal.x) < 0.6 ? Vec3{1, 0, 0} : Vec3{0, 1, 0}));
    const Vec3 along = math::cross(normal, across);
    const std::span<const VertexId> vertices = mesh.faceVertices(face);
    const Vec3 origin = mesh.point(vertices[0]);
    loop_.clear();
    for (const VertexId v : vertices) {
      const Vec3 p = mesh.point(v) - origin;
      loop_.push_back({math::dot(p, across), math::dot(p, along)});
    }
  }

  const Point2& at(std::size_t i) const { return loop_[rest_[i % rest_.size()]]; }

  /// A convex corner whose triangle holds no other corner; without one (a loop that crosses itself) the first.
  std::size_t findEar() const {
    const std::size_t count = rest_.size();
    for (std::size_t i = 0; i < count; ++i) {
      const Point2& a = at(i + count - 1);
      const Point2& b = at(i);
      const Point2& c = at(i + 1);
      if (turn(a, b, c) <= 0) continue;
      bool isFree = true;
      for (std::size_t k = 2; k + 1 < count && isFree; ++k) {
        const Point2& p = at(i + k);
        isFree = turn(at(i + k - 1), p, at(i + k + 1)) > 0 || !inside(p, a, b, c);
      }
      if (isFree) return i;
    }
    return 0;
  }

  std::uint32_t* emit(std::size_t ear, std::uint32_t base, std::uint32_t* out) const {
    const std::size_t count = rest_.size();
    *out++ = base + rest_[(ear + count - 1) % count];
    *out++ = base + rest_[ear];
    *out++ = base + rest_[(ear + 1) % count];
    return out;
  }

  std::vector<Point2> loop_;
  std::vector<std::uint32_t> rest_;
};

/// Whether corner 1 rather than corner 0 starts the diagonal.
bool cutsSecondDiagonal(const mesh::Mesh& mesh, std::span<const VertexId> quad) {
  const Vec3 a = mesh.point(quad[0]);
  const Vec3 b = mesh.point(quad[1]);
  const Vec3 c = mesh.point(quad[2]);
  const Vec3 d = mesh.point(quad[3]);
  const Vec3 ac = c - a;
  const Vec3 bd = d - b;
  const bool firstFits = math::dot(math::cross(b - a, ac), math::cross(ac, d - a)) > 0;
  const bool secondFits = math::dot(math::cross(c - b, bd), math::cross(bd, a - b)) > 0;
  if (firstFits != secondFits) return secondFits;
  return math::lengthSquared(bd) < 0.999 * math::lengthSquared(ac);
}

}  // namespace

std::vector<std::uint32_t> triangulateFaces(const mesh::Mesh& mesh) {
  const auto faces = static_cast<std::size_t>(mesh.faceCount());
  std::vector<std::uint32_t> triangles(
      3 * firstTriangle(mesh, mesh.faceCount()));
  parallelFor(faces, 4096, [&](std::size_t begin, std::size_t end) {
    EarClipper clipper;
    for (auto face = static_cast<FaceId>(begin); face < static_cast<FaceId>(end); ++face) {
      std::uint32_t* out = triangles.data() + 3 * firstTriangle(mesh, face);
      const auto base = static_cast<std::uint32_t>(mesh.firstCorner(face));
      const std::span<const VertexId> loop = mesh.faceVertices(face);
      if (loop.size() > 4) {
        clipper.run(mesh, face, out);
        continue;
      }
      const std::uint32_t start = loop.size() == 4 && cutsSecondDiagonal(mesh, loop) ? 1 : 0;
      for (std::uint32_t k = 1; k + 1 < loop.size(); ++k) {
        *out++ = base + start;
        *out++ = base + start + k;
        *out++ = base + (start + k + 1) % static_cast<std::uint32_t>(loop.size());
      }
    }
  });
  return triangles;
}

}  // namespace host::viewport
