#include "host/ops/uv/seams.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <queue>
#include <utility>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/ops/uv/uv_topology.h"

namespace host::ops {
namespace {

bool hasArea(const mesh::Mesh& mesh, FaceId f) {
  const auto vertices = mesh.faceVertices(f);
  const mesh::Vec3 origin = mesh.point(vertices[0]);
  mesh::Vec3 sum;
  double longest = 0;
  for (std::size_t k = 1; k + 1 < vertices.size(); ++k) {
    const mesh::Vec3 p = mesh.point(vertices[k]) - origin, q = mesh.point(vertices[k + 1]) - origin;
    sum += math::cross(p, q);
    longest = std::max({longest, math::lengthSquared(p), math::lengthSquared(q)});
  }
  return math::length(sum) > 1e-12 * longest;  // false for what is no number too
}

/// Whether faces may lie beside each other in UV across an edge.
bool canJoin(const mesh::Mesh& mesh, EdgeId e) {
  const auto corners = mesh.adjacency().edgeCorners(e);
  return corners.size() == 2 && mesh.cornerVertex(corners[0]) != mesh.cornerVertex(corners[1]) &&
         hasArea(mesh, mesh.adjacency().cornerFace(corners[0])) &&
         hasArea(mesh, mesh.adjacency().cornerFace(corners[1]));
}

/// The numbering of UVs that seams give: one a fan of corners.
struct Fans {
  std::vector<Index> ofCorner;
  Index count = 0;
};
Fans fansOf(const mesh::Mesh& mesh, const SeamFlags& seams) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  PerElement<CornerId, Index> parents(mesh.cornerCount());
  std::iota(parents.begin(), parents.end(), 0);
  const auto root = [&](Index i) {
    while (parents[i] != i) i = parents[i] = parents[parents[i]];
    return i;
  };
  const auto join = [&](Index a, Index b) {
    a = root(a);
    b = root(b);
    parents[std::max(a, b)] = std::min(a, b);
  };
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    if (seams[at(e)] || !canJoin(mesh, e)) continue;
    const auto corners = adjacency.edgeCorners(e);
    join(corners[0], adjacency.nextCorner(corners[1]));
    join(adjacency.nextCorner(corners[0]), corners[1]);
  }
  Fans fans;
  fans.ofCorner.assign(parents.size(), kNone);
  std::vector<Index> number(parents.size(), kNone);
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    Index& mine = number[at(root(c))];
    if (mine == kNone) mine = fans.count++;
    fans.ofCorner[at(c)] = mine;
  }
  return fans;
}

/// Cuts one piece open.
class PieceOpener {
 public:
  PieceOpener(const mesh::Mesh& mesh, SeamFlags& seams)
      : mesh_(mesh),
        adjacency_(mesh.adjacency()),
        seams_(seams),
        isCrossed_(at(mesh.edgeCount()), 0),
        degree_(at(mesh.vertexCount()), 0),
        distance_(at(mesh.vertexCount()), kFar),
        from_(at(mesh.vertexCount()), kNone) {}

  /// @param faces of a piece that seams and borders bound
  void open(std::span<const FaceId> faces, bool isClosed) {
    std::vector<EdgeId> edges = uncrossedEdges(faces);
    prune(edges, faces);
    std::vector<EdgeId> cut;
    for (const EdgeId e : edges)
      if (isCut_(e)) cut.push_back(e);
    for (const EdgeId e : cut) seams_[at(e)] = 1;
    // A sphere's graph prunes away to nothing; a path opens it.
    if (cut.empty() && isClosed) cutPath(faces);
    for (const FaceId f : faces)
      for (const EdgeId e : mesh_.faceEdges(f)) isCrossed_[at(e)] = 0;
  }

 private:
  static constexpr double kFar = 1e300;
  static constexpr std::uint8_t kCrossed = 1, kPruned = 2;

  [[nodiscard]] bool isInner(EdgeId e) const { return !seams_[at(e)] && canJoin(mesh_, e); }
  [[nodiscard]] bool isCut_(EdgeId e) const { return isCrossed_[at(e)] == 0; }

  /// Walks over all faces through a tree of edges, flat ones first; the inner edges that it does
  /// not cross would cut the piece to a disc.
  std::vector<EdgeId> uncrossedEdges(std::span<const FaceId> faces) {
    std::vector<EdgeId> edges;
    std::vector<std::pair<double, EdgeId>> queue;
    std::vector<FaceId> met{faces[0]};
    isMet_.resize(at(mesh_.faceCount()), 0);
    const auto offer = [&](FaceId f) {
      isMet_[at(f)] = 1;
      for (const EdgeId e : mesh_.faceEdges(f)) {
        if (!isInner(e)) continue;
        queue.emplace_back(bendAt(e), e);
        std::push_heap(queue.begin(), queue.end(), std::greater<>());
      }
    };
    offer(faces[0]);
    while (!queue.empty()) {
      std::pop_heap(queue.begin(), queue.end(), std::greater<>());
      const EdgeId e = queue.back().second;
      queue.pop_back();
      for (const FaceId f : adjacency_.edgeFaces(e))
        if (!isMet_[at(f)]) {
          isCrossed_[at(e)] = kCrossed;
          offer(f);
        }
    }
    for (const FaceId f : faces)
      for (const EdgeId e : mesh_.faceEdges(f))
        if (isInner(e) && isCrossed_[at(e)] == 0 && adjacency_.edgeFaces(e)[0] == f)
          edges.push_back(e);
    return edges;
  }

  /// Takes dead ends off the graph of cuts: they cut nothing apart. Borders and seams count as ends
  /// that hold: every loop of them must stay joined to the rest or not be joined at all.
  void prune(const std::vector<EdgeId>& edges, std::span<const FaceId> faces) {
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f)) degree_[at(v)] = 0;
    const auto count = [&](EdgeId e, int change) {
      degree_[at(mesh_.edge(e).a)] += change;
      degree_[at(mesh_.edge(e).b)] += change;
    };
    for (const EdgeId e : edges) count(e, 1);
    // Borders and seams are cut already: their vertices hold what hangs on them, unless it is the
    // only thing that hangs there.
    for (const FaceId f : faces)
      for (const EdgeId e : mesh_.faceEdges(f))
        if (!isInner(e)) count(e, 1);
    std::vector<EdgeId> queue(edges);
    for (std::size_t i = 0; i < queue.size(); ++i) {
      const EdgeId e = queue[i];
      if (isCrossed_[at(e)] != 0) continue;
      const VertexId a = mesh_.edge(e).a, b = mesh_.edge(e).b;
      if (degree_[at(a)] > 1 && degree_[at(b)] > 1) continue;
      isCrossed_[at(e)] = kPruned;
      count(e, -1);
      for (const VertexId v : {a, b})
        if (degree_[at(v)] == 1)
          for (const EdgeId next : adjacency_.vertexEdges(v))
            if (isCrossed_[at(next)] == 0 && isInner(next)) queue.push_back(next);
    }
  }

  [[nodiscard]] double bendAt(EdgeId e) const {
    const auto faces = adjacency_.edgeFaces(e);
    return 1 - math::dot(mesh::faceNormal(mesh_, faces[0]), mesh::faceNormal(mesh_, faces[1]));
  }

  void cutPath(std::span<const FaceId> faces) {
    const VertexId first = mesh_.faceVertices(faces[0])[0];
    const VertexId start = farthest(first);
    const VertexId end = farthest(start);
    int length = 0;
    for (VertexId v = end; from_[at(v)] != kNone; ++length) {
      const EdgeId e = from_[at(v)];
      seams_[at(e)] = 1;
      v = mesh_.edge(e).other(v);
    }
    // One edge alone opens no more than a slit without width.
    for (const EdgeId e : adjacency_.vertexEdges(end))
      if (length < 2 && isInner(e)) {
        seams_[at(e)] = 1;
        ++length;
      }
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f)) distance_[at(v)] = kFar;
  }

  /// The vertex farthest along edges (Dijkstra); leaves the ways back in from_.
  VertexId farthest(VertexId start) {
    for (const VertexId v : reached_) {
      distance_[at(v)] = kFar;
      from_[at(v)] = kNone;
    }
    reached_.assign(1, start);
    std::priority_queue<std::pair<double, VertexId>, std::vector<std::pair<double, VertexId>>,
                        std::greater<>>
        queue;
    distance_[at(start)] = 0;
    from_[at(start)] = kNone;
    queue.emplace(0, start);
    VertexId last = start;
    while (!queue.empty()) {
      const auto [distance, v] = queue.top();
      queue.pop();
      if (distance > distance_[at(v)]) continue;
      last = v;
      for (const EdgeId e : adjacency_.vertexEdges(v)) {
        const VertexId w = mesh_.edge(e).other(v);
        const double length = distance + math::distance(mesh_.point(v), mesh_.point(w));
        if (!isInner(e) || !(length < distance_[at(w)])) continue;
        if (distance_[at(w)] == kFar) reached_.push_back(w);
        distance_[at(w)] = length;
        from_[at(w)] = e;
        queue.emplace(length, w);
      }
    }
    return last;
  }

  const mesh::Mesh& mesh_;
  const mesh::Adjacency& adjacency_;
  SeamFlags& seams_;
  std::vector<std::uint8_t> isCrossed_, isMet_;
  std::vector<int> degree_;
  std::vector<double> distance_;
  std::vector<EdgeId> from_;
  std::vector<VertexId> reached_;
};

}  // namespace

SeamFlags hardEdgeSeams(const mesh::Mesh& mesh) {
  SeamFlags seams(at(mesh.edgeCount()), 0);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) seams[at(e)] = !mesh.isEdgeSmooth(e);
  return seams;
}

SeamFlags angleSeams(const mesh::Mesh& mesh, double degrees) {
  SeamFlags seams(at(mesh.edgeCount()), 0);
  const double least = std::cos(degrees * std::numbers::pi / 180);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const auto faces = mesh.adjacency().edgeFaces(e);
    seams[at(e)] = faces.size() == 2 && math::dot(mesh::faceNormal(mesh, faces[0]),
                                                  mesh::faceNormal(mesh, faces[1])) < least;
  }
  return seams;
}

SeamFlags uvSeams(const mesh::Mesh& mesh, int uvSet) {
  SeamFlags seams(at(mesh.edgeCount()), 0);
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) seams[at(e)] = mesh::isUvSeam(mesh, uvSet, e);
  return seams;
}

Result<SeamFlags> seamsBetween(const mesh::Mesh& mesh,
                               std::span<const std::pair<VertexId, VertexId>> pairs) {
  SeamFlags seams(at(mesh.edgeCount()), 0);
  for (const auto& [a, b] : pairs) {
    if (std::min(a, b) < 0 || std::max(a, b) >= mesh.vertexCount())
      return fail(ErrorKind::NotFound, "There is no vertex {}; the mesh has {}.",
                  a < 0 ? a : std::max(a, b), mesh.vertexCount());
    const EdgeId e = mesh.adjacency().findEdge(a, b);
    if (e == kNone) return fail(ErrorKind::NotFound, "No edge joins the vertices {} and {}.", a, b);
    seams[at(e)] = 1;
  }
  return seams;
}

Index openPieces(const mesh::Mesh& mesh, SeamFlags& seams) {
  const Fans fans = fansOf(mesh, seams);
  // Faces that share a fan are one piece.
  PerElement<FaceId, Index> pieceOf(mesh.faceCount(), kNone);
  std::vector<FaceId> order;
  std::vector<std::size_t> starts;
  for (FaceId seed = 0; seed < mesh.faceCount(); ++seed) {
    if (pieceOf[seed] != kNone) continue;
    starts.push_back(order.size());
    pieceOf[seed] = seed;
    order.push_back(seed);
    for (std::size_t i = starts.back(); i < order.size(); ++i)
      for (const EdgeId e : mesh.faceEdges(order[i])) {
        if (seams[at(e)] || !canJoin(mesh, e)) continue;
        for (const FaceId f : mesh.adjacency().edgeFaces(e))
          if (pieceOf[f] == kNone) {
            pieceOf[f] = seed;
            order.push_back(f);
          }
      }
  }
  starts.push_back(order.size());
  Index opened = 0;
  PieceOpener opener(mesh, seams);
  std::vector<std::uint8_t> isCounted(at(fans.count), 0);
  std::vector<Index> nextOnBorder(at(fans.count), kNone);
  for (std::size_t p = 0; p + 1 < starts.size(); ++p) {
    const std::span<const FaceId> faces(order.data() + starts[p], starts[p + 1] - starts[p]);
    Index vertices = 0, inner = 0, border = 0, loops = 0;
    std::vector<Index> borderFans;
    for (const FaceId f : faces)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        const Index fan = fans.ofCorner[at(c)];
        vertices += !isCounted[at(fan)];
        isCounted[at(fan)] = 1;
        const EdgeId e = mesh.cornerEdge(c);
        if (!seams[at(e)] && canJoin(mesh, e)) {
          ++inner;
          continue;
        }
        ++border;
        borderFans.push_back(fan);
        nextOnBorder[at(fan)] = fans.ofCorner[at(mesh.adjacency().nextCorner(c))];
      }
    for (const Index first : borderFans) {
      if (nextOnBorder[at(first)] == kNone) continue;
      ++loops;
      for (Index fan = first; fan != kNone;) fan = std::exchange(nextOnBorder[at(fan)], kNone);
    }
    const Index euler = vertices - (inner / 2 + border) + static_cast<Index>(faces.size());
    // Holes stay open in UV; handles and closed pieces are cut.
    if (border > 0 && euler >= 2 - loops) continue;
    ++opened;
    opener.open(faces, border == 0);
  }
  return opened;
}

mesh::UvSet uvsBetweenSeams(const mesh::Mesh& mesh, const SeamFlags& seams, std::string name) {
  Fans fans = fansOf(mesh, seams);
  mesh::UvSet set{.name = std::move(name), .points = {}, .cornerIds = copyIds<UvId>(fans.ofCorner)};
  bool hasFlat = false;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (hasArea(mesh, f)) continue;
    hasFlat = true;
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      set.cornerIds[c] = kNone;
  }
  if (hasFlat) {
    std::vector<Index> number(at(fans.count), kNone);
    Index count = 0;
    for (UvId& id : set.cornerIds)
      if (id != kNone) {
        if (number[at(id)] == kNone) number[at(id)] = count++;
        id = number[at(id)];
      }
    fans.count = count;
  }
  set.points.resize(at(fans.count));
  return set;
}

}  // namespace host::ops
