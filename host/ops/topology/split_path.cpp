#include "host/ops/topology/split_path.h"

#include <array>
#include <cmath>
#include <map>

#include "host/base/cancel_poll.h"
#include "host/math/ray.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/triangulate.h"

namespace host::ops {
namespace {

using math::Vec3;
using mesh::CornerWeight;

/// A corner of a loop under construction.
struct PathCorner {
  VertexId vertex = kNone;
  std::vector<CornerWeight> blend;
};
using Loop = std::vector<PathCorner>;

/// A stretch of the path across one face.
struct Chord {
  std::size_t from, to;  ///< path points on edges; those between lie inside
};

/// A cut of an edge.
struct EdgeCut {
  double t;
  VertexId vertex;
};

class PathSplitter {
 public:
  PathSplitter(const Mesh& mesh, std::span<const SplitPoint> path)
      : mesh_(mesh), adjacency_(mesh.adjacency()), path_(path), rebuilder_(mesh) {}

  Result<SplitPathResult> run(Mesh& result) {
    HOST_TRY(checkPath());
    rebuilder_.keepAllVertices();
    placeVertices();
    HOST_TRY(assignChords());
    std::vector<Loop> extra;
    std::vector<FaceId> extraSources;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const auto chords = chords_.find(f);
      if (chords == chords_.end() && !hasCut(f)) {
        rebuilder_.copyFace(f);
        continue;
      }
      std::vector<Loop> pieces{loopOf(f)};
      if (chords != chords_.end())
        for (const Chord& chord : chords->second) HOST_TRY(cut(f, chord, pieces));
      addFace(f, pieces.front());
      for (std::size_t i = 1; i < pieces.size(); ++i) {
        pollCancel(i);
        extra.push_back(std::move(pieces[i]));
        extraSources.push_back(f);
      }
    }
    SplitPathResult outcome{vertices_, {}};
    for (std::size_t i = 0; i < extra.size(); ++i)
      outcome.faces.push_back(addFace(extraSources[i], extra[i]));
    for (const auto& [edge, cuts] : cuts_) inheritPieces(edge, cuts);
    result = rebuilder_.finish().mesh;
    return outcome;
  }

 private:
  [[nodiscard]] bool isInside(std::size_t i) const { return path_[i].edge == kNone; }

  Result<void> checkPath() const {
    if (path_.size() < 2) return fail("A path across faces needs two points, not {}", path_.size());
    for (const SplitPoint& point : path_) {
      if (point.edge == kNone) {
        if (!std::isfinite(point.point.x + point.point.y + point.point.z))
          return fail(ErrorKind::BadArgument, "A point of the path is not a number");
        continue;
      }
      HOST_TRY(checkIds("edge", std::span(&point.edge, 1), mesh_.edgeCount()));
      if (!(point.t >= 0 && point.t <= 1))
        return fail("{} is no place on edge {}: it runs from 0 to 1", point.t, point.edge);
    }
    if (isInside(0) || isInside(path_.size() - 1))
      return fail("A path across faces begins and ends on edges");
    return {};
  }

  void placeVertices() {
    for (const SplitPoint& point : path_) {
      if (point.edge == kNone) {
        vertices_.push_back(rebuilder_.addVertex(point.point));
        continue;
      }
      const mesh::EdgeVertices ends = mesh_.edge(point.edge);
      if (point.t == 0 || point.t == 1) {
        vertices_.push_back(point.t == 0 ? ends.a : ends.b);
        continue;
      }
      std::vector<EdgeCut>& cuts = cuts_[point.edge];
      const auto at = std::find_if(cuts.begin(), cuts.end(),
                                   [&](const EdgeCut& cut) { return cut.t >= point.t; });
      if (at != cuts.end() && at->t == point.t) {
        vertices_.push_back(at->vertex);
        continue;
      }
      const Vec3 a(mesh_.points()[static_cast<std::size_t>(ends.a)]),
          b(mesh_.points()[static_cast<std::size_t>(ends.b)]);
      const VertexId vertex = rebuilder_.addVertex((a + (b - a) * point.t).toFloat());
      cuts.insert(at, {point.t, vertex});
      vertices_.push_back(vertex);
    }
  }

  /// The faces that a path point on an edge, or at its end, touches.
  [[nodiscard]] std::span<const FaceId> facesAt(std::size_t i) const {
    const bool isVertex = path_[i].t == 0 || path_[i].t == 1;
    return isVertex ? adjacency_.vertexFaces(vertices_[i]) : adjacency_.edgeFaces(path_[i].edge);
  }

  Result<void> assignChords() {
    std::size_t from = 0;
    for (std::size_t to = 1; to < path_.size(); ++to) {
      pollCancel(to);
      if (isInside(to)) continue;
      const Chord chord{from, to};
      from = to;
      const auto first = facesAt(chord.from), second = facesAt(chord.to);
      const bool isAlongEdge = chord.to == chord.from + 1;
      FaceId found = kNone;
      double nearest = 0;
      for (const FaceId f : first) {
        pollCancel(f);
        if (std::find(second.begin(), second.end(), f) == second.end()) continue;
        if (isAlongEdge && areNeighbours(f, chord)) continue;  // nothing to cut on the edge itself
        const double distance = isAlongEdge ? 0 : distanceTo(f, Vec3(path_[chord.from + 1].point));
        if (found == kNone || distance < nearest) {
          found = f;
          nearest = distance;
        }
      }
      if (found == kNone)
        return fail("Points {} and {} of the path have no face between them", chord.from, chord.to);
      chords_[found].push_back(chord);
    }
    return {};
  }

  [[nodiscard]] bool areNeighbours(FaceId f, const Chord& chord) const {
    const Loop loop = loopOf(f);
    const std::size_t a = placeOf(loop, vertices_[chord.from]),
                      b = placeOf(loop, vertices_[chord.to]);
    const std::size_t n = loop.size();
    return a == n || b == n || a == b || (a + 1) % n == b || (b + 1) % n == a;
  }

  /// Squared distance of a point from a face's triangles.
  [[nodiscard]] double distanceTo(FaceId f, const Vec3& p) const {
    double nearest = HUGE_VAL;
    for (const mesh::LoopTriangle& triangle : mesh::triangulateFace(mesh_, f)) {
      const auto [a, b, c] = pointsOf(f, triangle);
      const auto [u, v] = math::closestOnTriangle(a, b, c, p);
      nearest = std::min(nearest, math::lengthSquared(a * (1 - u - v) + b * u + c * v - p));
    }
    return nearest;
  }
  [[nodiscard]] std::array<Vec3, 3> pointsOf(FaceId f, const mesh::LoopTriangle& triangle) const {
    std::array<Vec3, 3> points;
    for (std::size_t k = 0; k < 3; ++k)
      points[k] = Vec3(mesh_.points()[at(mesh_.cornerVertex(mesh_.firstCorner(f) + triangle[k]))]);
    return points;
  }
  /// The corner of a point inside a face: a blend over the triangle it is nearest to.
  [[nodiscard]] PathCorner insideCorner(FaceId f, std::size_t i) const {
    PathCorner corner{vertices_[i], {}};
    const Vec3 p(path_[i].point);
    double nearest = HUGE_VAL;
    for (const mesh::LoopTriangle& triangle : mesh::triangulateFace(mesh_, f)) {
      const auto [a, b, c] = pointsOf(f, triangle);
      const auto [u, v] = math::closestOnTriangle(a, b, c, p);
      const double distance = math::lengthSquared(a * (1 - u - v) + b * u + c * v - p);
      if (distance >= nearest) continue;
      nearest = distance;
      const CornerId first = mesh_.firstCorner(f);
      corner.blend = {
          {first + triangle[0], 1 - u - v}, {first + triangle[1], u}, {first + triangle[2], v}};
    }
    return corner;
  }

  [[nodiscard]] bool hasCut(FaceId f) const {
    const auto edges = mesh_.faceEdges(f);
    return std::any_of(edges.begin(), edges.end(), [&](EdgeId e) { return cuts_.count(e) != 0; });
  }

  /// A face's loop with the cuts of its edges in place.
  [[nodiscard]] Loop loopOf(FaceId f) const {
    Loop loop;
    const CornerId first = mesh_.firstCorner(f);
    const Index n = mesh_.faceSize(f);
    for (Index k = 0; k < n; ++k) {
      const CornerId corner = first + k, next = first + (k + 1) % n;
      loop.push_back({mesh_.cornerVertex(corner), {{corner, 1}}});
      const EdgeId edge = mesh_.cornerEdge(corner);
      const auto cuts = cuts_.find(edge);
      if (cuts == cuts_.end()) continue;
      const bool isForward = mesh_.edge(edge).a == mesh_.cornerVertex(corner);
      const std::size_t count = cuts->second.size();
      for (std::size_t i = 0; i < count; ++i) {
        const EdgeCut& cut = cuts->second[isForward ? i : count - 1 - i];
        const double t = isForward ? cut.t : 1 - cut.t;
        loop.push_back({cut.vertex, {{corner, 1 - t}, {next, t}}});
      }
    }
    return loop;
  }
  [[nodiscard]] static std::size_t placeOf(const Loop& loop, VertexId vertex) {
    const auto at = std::find_if(loop.begin(), loop.end(),
                                 [&](const PathCorner& c) { return c.vertex == vertex; });
    return static_cast<std::size_t>(at - loop.begin());
  }

  Result<void> cut(FaceId f, const Chord& chord, std::vector<Loop>& pieces) {
    for (std::size_t p = 0; p < pieces.size(); ++p) {
      pollCancel(p);
      const std::size_t n = pieces[p].size();
      const std::size_t a = placeOf(pieces[p], vertices_[chord.from]),
                        b = placeOf(pieces[p], vertices_[chord.to]);
      if (a == n || b == n || a == b) continue;
      Loop left, right;  // left of the path: from its end round to its start
      for (std::size_t k = b; k != a; k = (k + 1) % n) left.push_back(pieces[p][k]);
      left.push_back(pieces[p][a]);
      for (std::size_t k = a; k != b; k = (k + 1) % n) right.push_back(pieces[p][k]);
      right.push_back(pieces[p][b]);
      for (std::size_t i = chord.from + 1; i < chord.to; ++i) left.push_back(insideCorner(f, i));
      for (std::size_t i = chord.to; i-- > chord.from + 1;) right.push_back(insideCorner(f, i));
      if (left.size() < 3 || right.size() < 3) break;
      pieces[p] = std::move(left);
      pieces.push_back(std::move(right));
      return {};
    }
    return fail("Points {} and {} of the path don't cut face {} in two", chord.from, chord.to, f);
  }

  FaceId addFace(FaceId source, const Loop& loop) {
    rebuilder_.beginFace(source);
    for (const PathCorner& corner : loop) {
      if (corner.blend.size() == 1)
        rebuilder_.addCorner(corner.vertex, corner.blend.front().corner);
      else
        rebuilder_.addCorner(corner.vertex, corner.blend);
    }
    return rebuilder_.endFace();
  }

  void inheritPieces(EdgeId edge, const std::vector<EdgeCut>& cuts) {
    const mesh::EdgeVertices ends = mesh_.edge(edge);
    rebuilder_.replaceEdge(edge, ends.a, cuts.front().vertex);
    for (std::size_t i = 0; i < cuts.size(); ++i)
      rebuilder_.inheritEdge(cuts[i].vertex, i + 1 < cuts.size() ? cuts[i + 1].vertex : ends.b,
                             edge);
  }

  const Mesh& mesh_;
  const mesh::Adjacency& adjacency_;
  std::span<const SplitPoint> path_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<VertexId> vertices_;
  std::map<EdgeId, std::vector<EdgeCut>> cuts_;
  std::map<FaceId, std::vector<Chord>> chords_;
};

}  // namespace

Result<SplitPathResult> splitPath(Mesh& mesh, std::span<const SplitPoint> path) {
  Mesh split;
  auto result = PathSplitter(mesh, path).run(split);
  if (result) mesh = std::move(split);
  return result;
}

}  // namespace host::ops
