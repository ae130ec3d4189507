#include "host/ops/topology/reduce.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <queue>
#include <unordered_map>

#include "host/base/cancel.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/triangulate_faces.h"

namespace host::ops {
namespace {

using math::Vec3;

/// Sum of squared distances from planes: x' A x + 2 b x + c.
struct Quadric {
  double xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0, x = 0, y = 0, z = 0, c = 0;

  void add(const Vec3& normal, const Vec3& point, double weight) {
    const double d = -math::dot(normal, point);
    xx += weight * normal.x * normal.x;
    xy += weight * normal.x * normal.y;
    xz += weight * normal.x * normal.z;
    yy += weight * normal.y * normal.y;
    yz += weight * normal.y * normal.z;
    zz += weight * normal.z * normal.z;
    x += weight * normal.x * d;
    y += weight * normal.y * d;
    z += weight * normal.z * d;
    c += weight * d * d;
  }
  void add(const Quadric& other) {
    xx += other.xx, xy += other.xy, xz += other.xz, yy += other.yy, yz += other.yz;
    zz += other.zz, x += other.x, y += other.y, z += other.z, c += other.c;
  }
  [[nodiscard]] double at(const Vec3& p) const {
    const double value = xx * p.x * p.x + yy * p.y * p.y + zz * p.z * p.z +
                         2 * (xy * p.x * p.y + xz * p.x * p.z + yz * p.y * p.z) +
                         2 * (x * p.x + y * p.y + z * p.z) + c;
    return std::max(0.0, value);
  }
};

std::uint64_t keyOf(VertexId a, VertexId b) {
  if (a > b) std::swap(a, b);
  return static_cast<std::uint64_t>(static_cast<std::uint32_t>(a)) << 32 |
         static_cast<std::uint32_t>(b);
}

class Reducer {
 public:
  Reducer(const Mesh& mesh, std::span<const FaceId> faces, const ReduceOptions& options)
      : mesh_(mesh), options_(options), isListed_(flagsOf(faces, mesh.faceCount())) {
    const std::size_t vertices = at(mesh.vertexCount());
    points_.reserve(vertices);
    // About the middle, so that the sums keep their digits far from the origin.
    Vec3 sum;
    for (const math::Vec3f& point : mesh.points()) sum += Vec3(point);
    const Vec3 middle = vertices == 0 ? Vec3() : sum / static_cast<double>(vertices);
    for (const math::Vec3f& point : mesh.points()) points_.push_back(Vec3(point) - middle);
    heads_.assign(vertices, kNone);
    quadrics_.resize(vertices);
    versions_.assign(vertices, 0);
    isLocked_.assign(vertices, 0);
    featureCounts_.assign(vertices, 0);
    mark_.assign(vertices, 0);
    collectTriangles(faces);
    findFeatures();
    lockVertices();
    addPlanes();
  }

  [[nodiscard]] std::size_t triangleCount() const { return triangles_.size(); }
  [[nodiscard]] std::size_t vertexCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(heads_, [](Index head) { return head != kNone; }));
  }

  /// @return false when it had to stop before
  Result<bool> run(std::size_t triangles, std::size_t vertices) {
    for (Index t = 0; t < static_cast<Index>(triangles_.size()); ++t)
      for (int k = 0; k < 3; ++k) {
        const VertexId a = vertexAt(t, k), b = vertexAt(t, (k + 1) % 3);
        // Each edge once: from the triangle that walks it upwards, or the only one.
        if (a < b || isBorder(a, b)) pushBoth(a, b);
      }
    std::size_t trianglesLeft = triangles_.size(), verticesLeft = vertexCount();
    LongWork shown("Reducing", trianglesLeft - std::min(trianglesLeft, triangles));
    std::size_t steps = 0;
    while (trianglesLeft > triangles || verticesLeft > vertices) {
      if (queue_.empty()) return false;
      if (++steps % 4096 == 0 && isCancelled()) return cancelled();
      const Candidate best = queue_.top();
      queue_.pop();
      if (best.fromVersion != versions_[at(best.from)] || best.toVersion != versions_[at(best.to)])
        continue;
      if (!mayCollapse(best.from, best.to)) continue;
      const std::size_t gone = collapse(best.from, best.to);
      trianglesLeft -= gone;
      --verticesLeft;
      shown.advance(gone);
    }
    return true;
  }

  ReduceResult finish(Mesh& mesh) {
    mesh::MeshRebuilder rebuilder(mesh_);
    rebuilder.keepAllVertices();
    ReduceResult result;
    std::size_t next = 0;  // triangles are in the order of their faces
    FaceId made = 0;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isListed_[at(f)] == 0) {
        rebuilder.copyFace(f);
        ++made;
        continue;
      }
      const Triangle& triangle = triangles_[next++];
      if (!triangle.isAlive) continue;
      rebuilder.beginFace(f);
      for (std::size_t k = 0; k < 3; ++k)
        rebuilder.addCorner(triangle.vertices[k], triangle.sources[k]);
      rebuilder.endFace();
      result.faces.push_back(made++);
    }
    for (const auto& [key, source] : features_)
      if (source != kNone)
        rebuilder.inheritEdge(static_cast<VertexId>(key >> 32),
                              static_cast<VertexId>(key & 0xffffffffu), source);
    mesh = std::move(rebuilder.finish({.dropUnusedVertices = true}).mesh);
    return result;
  }

 private:
  struct Triangle {
    std::array<VertexId, 3> vertices;
    std::array<CornerId, 3> sources;  ///< whose data the corners have
    bool isAlive = true;
  };
  struct Candidate {
    double cost;
    VertexId from, to;
    std::uint32_t fromVersion, toVersion;
    /// The queue gives the cheapest first, of equally cheap ones those of the lowest vertices.
    friend bool operator<(const Candidate& a, const Candidate& b) {
      if (a.cost != b.cost) return a.cost > b.cost;
      return std::pair(a.from, a.to) > std::pair(b.from, b.to);
    }
  };

  // The corners of a vertex are a list: corner 3 t + k is followed by next_[3 t + k].

  [[nodiscard]] VertexId vertexAt(Index t, int k) const {
    return triangles_[at(t)].vertices[at(k)];
  }
  [[nodiscard]] const Vec3& point(VertexId v) const { return points_[at(v)]; }
  template <class Visit>
  void forCorners(VertexId v, Visit visit) const {
    for (Index c = heads_[at(v)]; c != kNone; c = next_[at(c)])
      if (triangles_[at(c / 3)].isAlive) visit(c / 3, c % 3);
  }
  template <class Visit>
  void forNeighbours(VertexId v, Visit visit) {
    ++stamp_;
    mark_[at(v)] = stamp_;
    forCorners(v, [&](Index t, int k) {
      for (int i = 1; i < 3; ++i) {
        const VertexId other = vertexAt(t, (k + i) % 3);
        if (mark_[at(other)] == stamp_) continue;
        mark_[at(other)] = stamp_;
        visit(other);
      }
    });
  }

  void collectTriangles(std::span<const FaceId> faces) {
    triangles_.reserve(faces.size());
    next_.assign(faces.size() * 3, kNone);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isListed_[at(f)] == 0) continue;
      Triangle triangle;
      for (std::size_t k = 0; k < 3; ++k) {
        triangle.sources[k] = mesh_.firstCorner(f) + static_cast<Index>(k);
        triangle.vertices[k] = mesh_.cornerVertex(triangle.sources[k]);
        const auto corner = static_cast<Index>(triangles_.size() * 3 + k);
        next_[at(corner)] = std::exchange(heads_[at(triangle.vertices[k])], corner);
      }
      triangles_.push_back(triangle);
    }
  }

  [[nodiscard]] bool isBorder(VertexId a, VertexId b) const {
    return borders_.contains(keyOf(a, b));
  }

  /// Whether the two sides of an edge have other ids at either end.
  template <class Ids>
  [[nodiscard]] bool isCut(const Ids& ids, EdgeId edge) const {
    if (ids.empty()) return false;
    const mesh::Adjacency& adjacency = mesh_.adjacency();
    const auto corners = adjacency.edgeCorners(edge);
    if (corners.size() != 2) return false;
    const CornerId a = corners[0], b = corners[1];
    const bool opposed = mesh_.cornerVertex(a) != mesh_.cornerVertex(b);
    const CornerId aEnd = adjacency.nextCorner(a), bEnd = adjacency.nextCorner(b);
    // Where sets part at one end alone, as at a ball's pole, no line runs.
    return ids[at(a)] != ids[at(opposed ? bEnd : b)] &&
           ids[at(aEnd)] != ids[at(opposed ? b : bEnd)];
  }
  [[nodiscard]] bool isMapBorder(EdgeId edge) const {
    for (int set = 0; set < mesh_.uvSetCount(); ++set)
      if (isCut(mesh_.uvSet(set).cornerIds, edge)) return true;
    return false;
  }
  [[nodiscard]] bool isColorBorder(EdgeId edge) const {
    if (!options_.keepsColorBorder) return false;
    for (int set = 0; set < mesh_.colorSetCount(); ++set)
      if (isCut(mesh_.colorSet(set).cornerIds, edge)) return true;
    return false;
  }

  /// Lines that stay lines: vertices on them move along them only.
  void findFeatures() {
    const std::vector<std::uint8_t> isAsked = flagsOf(options_.lines, mesh_.edgeCount());
    for (EdgeId e = 0; e < mesh_.edgeCount(); ++e) {
      const bool isOpen = mesh_.adjacency().isBorderEdge(e), isHard = !mesh_.isEdgeSmooth(e),
                 isCreased = mesh_.edgeCrease(e) > 0, isMap = isMapBorder(e),
                 isColor = isColorBorder(e);
      const auto [a, b] = mesh_.edge(e);
      if (isOpen) borders_.insert({keyOf(a, b), e});
      const bool hasShape =
          (isOpen && options_.keepsBorder) || (isMap && options_.keepsMapBorder) ||
          (isColor && options_.keepsColorBorder) || (isHard && options_.keepsHardEdges) ||
          (isCreased && options_.keepsCreases) || isAsked[at(e)] != 0;
      // Where a set is cut, a vertex that left the line would have no data to take.
      const bool isLine = isOpen || isMap || isColor || hasShape;
      if (!isLine) continue;
      features_[keyOf(a, b)] = isHard || isCreased ? e : kNone;
      ++featureCounts_[at(a)];
      ++featureCounts_[at(b)];
      if (hasShape) shaped_.push_back(e);
    }
  }

  /// How many different data the corners at a vertex have.
  [[nodiscard]] std::size_t wedgesAt(VertexId v) const {
    std::vector<CornerId> different;
    for (const CornerId corner : mesh_.adjacency().vertexCorners(v))
      if (std::ranges::none_of(different, [&](CornerId each) { return agree(each, corner); }))
        different.push_back(corner);
    return different.size();
  }

  void lockVertices() {
    const mesh::Adjacency& adjacency = mesh_.adjacency();
    for (VertexId v = 0; v < mesh_.vertexCount(); ++v) {
      const bool isMixed = std::ranges::any_of(adjacency.vertexFaces(v),
                                               [&](FaceId f) { return isListed_[at(f)] == 0; });
      isLocked_[at(v)] = isMixed || mesh_.vertexCrease(v) > 0 ||
                         (heads_[at(v)] != kNone && !adjacency.isManifoldVertex(v)) ||
                         wedgesAt(v) > (featureCounts_[at(v)] == 2 ? 2 : 1);
    }
    for (EdgeId e = 0; e < mesh_.edgeCount(); ++e) {
      if (adjacency.isManifoldEdge(e)) continue;
      const auto [a, b] = mesh_.edge(e);
      isLocked_[at(a)] = isLocked_[at(b)] = 1;
    }
  }

  void addPlanes() {
    for (const Triangle& triangle : triangles_) {
      const Vec3 &a = point(triangle.vertices[0]), &b = point(triangle.vertices[1]),
                 &c = point(triangle.vertices[2]);
      const Vec3 cross = math::cross(b - a, c - a);
      const double length = math::length(cross);
      if (length <= 0) continue;
      for (const VertexId v : triangle.vertices) quadrics_[at(v)].add(cross / length, a, length);
    }
    // A kept line is held by planes through it, across the faces beside it.
    const double weight = 1e3 * std::clamp(options_.featureWeight, 0.0, 1.0);
    for (const EdgeId e : shaped_)
      for (const CornerId corner : mesh_.adjacency().edgeCorners(e)) {
        const FaceId f = mesh_.adjacency().cornerFace(corner);
        const auto vertices = mesh_.faceVertices(f);
        if (vertices.size() != 3) continue;
        const auto [from, to] = mesh_.edge(e);
        const Vec3 along = point(to) - point(from);
        const Vec3 normal = math::cross(point(vertices[1]) - point(vertices[0]),
                                        point(vertices[2]) - point(vertices[0]));
        const Vec3 across = math::cross(along, normal);
        const double length = math::length(across);
        if (length <= 0) continue;
        const double area = math::lengthSquared(along) * weight;
        quadrics_[at(from)].add(across / length, point(from), area);
        quadrics_[at(to)].add(across / length, point(from), area);
      }
  }

  // Candidates.

  void push(VertexId from, VertexId to) {
    if (isLocked_[at(from)] != 0) return;
    const int lines = featureCounts_[at(from)];
    if (lines != 0 && (lines != 2 || !features_.contains(keyOf(from, to)))) return;
    Quadric sum = quadrics_[at(from)];
    sum.add(quadrics_[at(to)]);
    // Where the shape does not tell, short edges go first.
    const double length = math::lengthSquared(point(from) - point(to));
    queue_.push({sum.at(point(to)) + 1e-9 * length * length, from, to, versions_[at(from)],
                 versions_[at(to)]});
  }
  void pushBoth(VertexId a, VertexId b) {
    push(a, b);
    push(b, a);
  }

  /// The third vertices of the triangles at an edge.
  [[nodiscard]] int thirds(VertexId from, VertexId to, std::array<VertexId, 2>& found) const {
    int count = 0;
    forCorners(from, [&](Index t, int k) {
      const VertexId a = vertexAt(t, (k + 1) % 3), b = vertexAt(t, (k + 2) % 3);
      if (a != to && b != to) return;
      if (count < 2) found[at(count)] = a == to ? b : a;
      ++count;
    });
    return count;
  }

  [[nodiscard]] int triangleCountAt(VertexId v) const {
    int count = 0;
    forCorners(v, [&](Index, int) { ++count; });
    return count;
  }

  [[nodiscard]] bool mayCollapse(VertexId from, VertexId to) {
    std::array<VertexId, 2> third{kNone, kNone};
    const int sides = thirds(from, to, third);
    if (sides == 0 || sides > 2 || (sides == 2 && third[0] == third[1])) return false;
    // A vertex on the mesh's border must go along it, or two sheets would meet in a point.
    if (sides == 1 && !isBorder(from, to)) return false;
    // No other vertex may be joined to both ends.
    int common = 0;
    forNeighbours(from, [](VertexId) {});
    const std::uint32_t ofFrom = stamp_;
    std::vector<VertexId>& seen = scratch_;
    seen.clear();
    forCorners(to, [&](Index t, int k) {
      for (int i = 1; i < 3; ++i) {
        const VertexId other = vertexAt(t, (k + i) % 3);
        if (other != from && mark_[at(other)] == ofFrom) seen.push_back(other);
      }
    });
    std::ranges::sort(seen);
    seen.erase(std::unique(seen.begin(), seen.end()), seen.end());
    common = static_cast<int>(seen.size());
    if (common != sides) return false;
    // The last triangle of a piece stays.
    if (triangleCountAt(to) == sides && triangleCountAt(from) == sides) return false;
    bool isFine = !joinsWedges(from, to);
    forCorners(from, [&](Index t, int k) {
      const VertexId a = vertexAt(t, (k + 1) % 3), b = vertexAt(t, (k + 2) % 3);
      if (!isFine || a == to || b == to) return;
      const bool hasThird = a == third[0] || a == third[1],
                 hasOther = b == third[0] || b == third[1];
      // Both beside the edge: the triangle would lie on one that is there.
      if (hasThird && hasOther) isFine = false;
      isFine = isFine && keepsSide(from, to, a, b);
    });
    return isFine;
  }

  /// Whether the edge has one datum at the end that goes and two at the end that stays: the fan
  /// around the former could not tell which to take.
  [[nodiscard]] bool joinsWedges(VertexId from, VertexId to) const {
    std::array<std::array<CornerId, 2>, 2> sides{};
    std::size_t count = 0;
    forCorners(from, [&](Index t, int k) {
      for (int i = 1; i < 3; ++i)
        if (vertexAt(t, (k + i) % 3) == to && count < 2) {
          const auto& sources = triangles_[at(t)].sources;
          sides[count++] = {sources[at(k)], sources[at((k + i) % 3)]};
        }
    });
    return count == 2 && agree(sides[0][0], sides[1][0]) && !agree(sides[0][1], sides[1][1]);
  }

  /// Whether a triangle keeps its direction and stays a triangle when its corner moves.
  [[nodiscard]] bool keepsSide(VertexId from, VertexId to, VertexId a, VertexId b) const {
    const Vec3 before = math::cross(point(a) - point(from), point(b) - point(from));
    const Vec3 after = math::cross(point(a) - point(to), point(b) - point(to));
    const double lengthBefore = math::length(before), lengthAfter = math::length(after);
    const double longest = std::max({math::lengthSquared(point(a) - point(to)),
                                     math::lengthSquared(point(b) - point(to)),
                                     math::lengthSquared(point(a) - point(b))});
    // Slivers are let pass where there were slivers before.
    if (lengthAfter < 1e-3 * longest && lengthAfter < lengthBefore) return false;
    if (lengthBefore <= 0) return lengthAfter > 0;
    return math::dot(before, after) > 0.2 * lengthBefore * lengthAfter;
  }

  // The edit.

  std::size_t collapse(VertexId from, VertexId to) {
    // The data of the corner that stays, on each side of the edge, as the triangles beside it have
    // it; a fan around `from` reaches the one side or the other without crossing a cut.
    struct Side {
      CornerId fromSource, toSource;
    };
    std::array<Side, 2> sides{};
    std::size_t count = 0;
    forCorners(from, [&](Index t, int k) {
      for (int i = 1; i < 3; ++i)
        if (vertexAt(t, (k + i) % 3) == to && count < 2) {
          const Triangle& triangle = triangles_[at(t)];
          sides[count++] = {triangle.sources[at(k)], triangle.sources[at((k + i) % 3)]};
          triangles_[at(t)].isAlive = false;
        }
    });
    std::vector<Index> moved;
    forCorners(from, [&](Index t, int k) { moved.push_back(3 * t + k); });
    for (const Index corner : moved) {
      Triangle& triangle = triangles_[at(corner / 3)];
      const auto k = at(corner % 3);
      const bool isSecond = count == 2 && !agree(triangle.sources[k], sides[0].fromSource) &&
                            agree(triangle.sources[k], sides[1].fromSource);
      triangle.sources[k] = sides[isSecond ? 1 : 0].toSource;
      triangle.vertices[k] = to;
      next_[at(corner)] = std::exchange(heads_[at(to)], corner);
    }
    heads_[at(from)] = kNone;
    moveFeatures(from, to);
    quadrics_[at(to)].add(quadrics_[at(from)]);
    ++versions_[at(from)];
    ++versions_[at(to)];
    dropDead(to);
    std::vector<VertexId> around;
    forNeighbours(to, [&](VertexId other) { around.push_back(other); });
    for (const VertexId other : around) pushBoth(to, other);
    return count;
  }

  /// Whether two corners of one vertex have the same data in all sets.
  [[nodiscard]] bool agree(CornerId a, CornerId b) const {
    for (int set = 0; set < mesh_.uvSetCount(); ++set)
      if (mesh_.cornerUv(set, a) != mesh_.cornerUv(set, b)) return false;
    for (int set = 0; options_.keepsColorBorder && set < mesh_.colorSetCount(); ++set) {
      const auto& ids = mesh_.colorSet(set).cornerIds;
      if (!ids.empty() && ids[at(a)] != ids[at(b)]) return false;
    }
    return true;
  }

  void moveFeatures(VertexId from, VertexId to) {
    if (featureCounts_[at(from)] == 0) return;
    features_.erase(keyOf(from, to));
    const bool wasBorder = borders_.erase(keyOf(from, to)) > 0;
    --featureCounts_[at(to)];
    // The line goes on from `to` where it went on from `from`.
    VertexId beyond = kNone;
    std::vector<VertexId> around;
    forNeighbours(to, [&](VertexId other) { around.push_back(other); });
    for (const VertexId other : around) {
      const auto line = features_.find(keyOf(from, other));
      if (line == features_.end()) continue;
      beyond = other;
      const EdgeId source = line->second;
      features_.erase(line);
      if (features_.emplace(keyOf(to, other), source).second)
        ++featureCounts_[at(to)];
      else
        --featureCounts_[at(other)];
      break;
    }
    if (wasBorder && beyond != kNone && borders_.erase(keyOf(from, beyond)) > 0)
      borders_.insert({keyOf(to, beyond), kNone});
    featureCounts_[at(from)] = 0;
  }

  void dropDead(VertexId v) {
    Index* link = &heads_[at(v)];
    while (*link != kNone) {
      if (triangles_[at(*link / 3)].isAlive)
        link = &next_[at(*link)];
      else
        *link = next_[at(*link)];
    }
  }

  const Mesh& mesh_;
  const ReduceOptions& options_;
  std::vector<std::uint8_t> isListed_;
  std::vector<Vec3> points_;
  std::vector<Triangle> triangles_;
  std::vector<Index> heads_, next_;
  std::vector<Quadric> quadrics_;
  std::vector<std::uint32_t> versions_, mark_;
  std::uint32_t stamp_ = 0;
  std::vector<std::uint8_t> isLocked_;
  std::vector<int> featureCounts_;
  std::unordered_map<std::uint64_t, EdgeId> features_, borders_;
  std::vector<EdgeId> shaped_;
  std::vector<VertexId> scratch_;
  std::priority_queue<Candidate> queue_;
};

}  // namespace

Result<ReduceResult> reduce(Mesh& mesh, std::span<const FaceId> faces,
                            const ReduceOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  HOST_TRY(checkIds("edge", options.lines, mesh.edgeCount()));
  if (!options.percentage && !options.vertices && !options.triangles)
    return fail("Say how far to reduce");
  if (options.percentage && !(*options.percentage >= 0 && *options.percentage <= 100))
    return fail("The percentage that goes must be between 0 and 100, not {}", *options.percentage);
  Mesh edited = mesh;
  auto cut = triangulateFaces(edited, faces);
  if (!cut) return failWith(std::move(cut.error()));
  Reducer reducer(edited, cut->triangles, options);
  std::size_t triangles = reducer.triangleCount(), vertices = reducer.vertexCount();
  if (options.percentage)
    triangles = static_cast<std::size_t>(
        std::llround(static_cast<double>(triangles) * (1 - *options.percentage / 100)));
  else if (options.vertices)
    vertices = *options.vertices;
  else
    triangles = *options.triangles;
  const auto reached = reducer.run(triangles, vertices);
  if (!reached) return failWith(reached.error());
  Mesh reduced;
  ReduceResult result = reducer.finish(reduced);
  result.isShort = !*reached;
  mesh = std::move(reduced);
  return result;
}

}  // namespace host::ops
