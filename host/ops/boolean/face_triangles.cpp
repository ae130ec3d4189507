#include "host/ops/boolean/face_triangles.h"

#include <algorithm>
#include <numeric>

namespace host::ops {

namespace {

class EarCutter {
 public:
  EarCutter(const ExactPoints& points, std::vector<PointId> loop, int axis, int sign)
      : points_(points), loop_(std::move(loop)), axis_(axis), sign_(sign) {}

  [[nodiscard]] int turn(Index a, Index b, Index c) const {
    return sign_ * points_.turn(loop_[at(a)], loop_[at(b)], loop_[at(c)], axis_);
  }

  /// Nothing when the loop crosses itself.
  std::vector<mesh::LoopTriangle> run() {
    std::vector<Index> rest(loop_.size());
    std::iota(rest.begin(), rest.end(), 0);
    std::vector<mesh::LoopTriangle> triangles;
    while (rest.size() > 3) {
      std::size_t ear = 0;
      while (ear < rest.size() && !isEar(rest, ear)) ++ear;
      if (ear == rest.size()) return {};
      triangles.push_back(cornersAt(rest, ear));
      rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(ear));
    }
    if (turn(rest[0], rest[1], rest[2]) <= 0) return {};
    triangles.push_back({rest[0], rest[1], rest[2]});
    return triangles;
  }

 private:
  [[nodiscard]] static mesh::LoopTriangle cornersAt(const std::vector<Index>& rest, std::size_t i) {
    const std::size_t n = rest.size();
    return {rest[(i + n - 1) % n], rest[i], rest[(i + 1) % n]};
  }

  [[nodiscard]] bool isEar(const std::vector<Index>& rest, std::size_t i) const {
    const auto [a, b, c] = cornersAt(rest, i);
    if (turn(a, b, c) <= 0) return false;
    return std::none_of(rest.begin(), rest.end(), [&](Index p) {
      return p != a && p != b && p != c && turn(a, b, p) >= 0 && turn(b, c, p) >= 0 &&
             turn(c, a, p) >= 0;
    });
  }

  const ExactPoints& points_;
  std::vector<PointId> loop_;
  int axis_, sign_;
};

}  // namespace

std::vector<mesh::LoopTriangle> exactTriangles(const ExactPoints& points, const mesh::Mesh& mesh,
                                               FaceId face) {
  if (mesh.faceSize(face) == 3) return {{0, 1, 2}};
  std::vector<PointId> loop;
  for (const VertexId v : mesh.faceVertices(face)) loop.push_back(points.ofVertex(v));
  math::Vec3 normal;
  for (std::size_t i = 0; i < loop.size(); ++i)
    normal += cross(points.near(loop[i]) - points.near(loop[0]),
                    points.near(loop[(i + 1) % loop.size()]) - points.near(loop[0]));
  const double x = std::abs(normal.x), y = std::abs(normal.y), z = std::abs(normal.z);
  const int axis = x >= y && x >= z ? 0 : y >= z ? 1 : 2;
  EarCutter cutter(points, std::move(loop), axis, normal[axis] < 0 ? -1 : 1);
  auto drawn = mesh::triangulateFace(mesh, face);
  const auto isGood = [&](const mesh::LoopTriangle& t) {
    return cutter.turn(t[0], t[1], t[2]) > 0;
  };
  if (std::all_of(drawn.begin(), drawn.end(), isGood)) return drawn;
  auto cut = cutter.run();
  return cut.empty() ? drawn : cut;
}

}  // namespace host::ops
