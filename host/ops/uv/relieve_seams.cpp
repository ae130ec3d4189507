#include "host/ops/uv/relieve_seams.h"

#include <algorithm>
#include <queue>

#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

constexpr double kFar = 1e300;
constexpr int kMostCuts = 4;  ///< a piece, before it is laid flat anew

/// Whether faces lie beside each other across an edge.
bool isInner(const mesh::Mesh& mesh, const SeamFlags& seams, EdgeId e) {
  return !seams[at(e)] && mesh.adjacency().edgeFaces(e).size() == 2;
}

/// The pieces between seams, as lists of faces; only those with faces that `isAsked` says.
std::vector<std::vector<FaceId>> piecesOf(const mesh::Mesh& mesh, const SeamFlags& seams,
                                          const auto& isAsked) {
  std::vector<std::vector<FaceId>> pieces;
  std::vector<std::uint8_t> isMet(at(mesh.faceCount()), 0);
  for (FaceId seed = 0; seed < mesh.faceCount(); ++seed) {
    if (isMet[at(seed)] || !isAsked(seed)) continue;
    isMet[at(seed)] = 1;
    std::vector<FaceId> faces{seed};
    for (std::size_t i = 0; i < faces.size(); ++i)
      for (const EdgeId e : mesh.faceEdges(faces[i])) {
        if (!isInner(mesh, seams, e)) continue;
        for (const FaceId f : mesh.adjacency().edgeFaces(e)) {
          if (isMet[at(f)] || !isAsked(f)) continue;
          isMet[at(f)] = 1;
          faces.push_back(f);
        }
      }
    pieces.push_back(std::move(faces));
  }
  return pieces;
}

/// Cuts pieces one after the other; its arrays are as long as the mesh and cleared piece by piece.
class Relief {
 public:
  Relief(const mesh::Mesh& mesh, const std::vector<double>& stretch, SeamFlags& seams)
      : mesh_(mesh),
        stretch_(stretch),
        seams_(seams),
        distance_(at(mesh.vertexCount()), kFar),
        from_(at(mesh.vertexCount()), kNone),
        border_(at(mesh.vertexCount()), kNone) {}

  bool cut(std::span<const FaceId> faces) {
    const bool isCut = labelBorders(faces) > 1 ? joinBorders(faces) : cutToEnds(faces);
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f)) {
        border_[at(v)] = kNone;
        distance_[at(v)] = kFar;
        from_[at(v)] = kNone;
      }
    return isCut;
  }

 private:
  using Entry = std::pair<double, VertexId>;
  using Queue = std::priority_queue<Entry, std::vector<Entry>, std::greater<>>;

  [[nodiscard]] bool isBorder(EdgeId e) const { return !isInner(mesh_, seams_, e); }

  /// Numbers what hangs together of the borders' vertices. @return how many there are
  Index labelBorders(std::span<const FaceId> faces) {
    Index count = 0;
    std::vector<VertexId> queue;
    for (const FaceId f : faces)
      for (const EdgeId first : mesh_.faceEdges(f)) {
        if (!isBorder(first) || border_[at(mesh_.edge(first).a)] != kNone) continue;
        queue.assign(1, mesh_.edge(first).a);
        border_[at(queue[0])] = count;
        for (std::size_t i = 0; i < queue.size(); ++i)
          for (const EdgeId e : mesh_.adjacency().vertexEdges(queue[i])) {
            const VertexId next = mesh_.edge(e).other(queue[i]);
            if (!isBorder(e) || border_[at(next)] != kNone) continue;
            border_[at(next)] = count;
            queue.push_back(next);
          }
        ++count;
      }
    return count;
  }

  /// Goes on from the vertices in the queue over inner edges, as far as `isEnd` does not say so.
  template <class IsEnd>
  VertexId walk(Queue& queue, IsEnd isEnd) {
    while (!queue.empty()) {
      const auto [far, v] = queue.top();
      queue.pop();
      if (far > distance_[at(v)]) continue;
      if (isEnd(v)) return v;
      for (const EdgeId e : mesh_.adjacency().vertexEdges(v)) {
        const VertexId w = mesh_.edge(e).other(v);
        const double next = far + math::distance(mesh_.point(v), mesh_.point(w));
        if (isBorder(e) || !(next < distance_[at(w)])) continue;
        distance_[at(w)] = next;
        from_[at(w)] = e;
        queue.emplace(next, w);
      }
    }
    return kNone;
  }

  void start(Queue& queue, VertexId v) {
    if (distance_[at(v)] == 0) return;
    distance_[at(v)] = 0;
    from_[at(v)] = kNone;
    queue.emplace(0, v);
  }

  /// Cuts from a vertex back along the way that led there. @return the vertices of the way
  std::vector<VertexId> cutBack(VertexId v) {
    std::vector<VertexId> way{v};
    while (from_[at(v)] != kNone) {
      const EdgeId e = from_[at(v)];
      seams_[at(e)] = 1;
      v = mesh_.edge(e).other(v);
      way.push_back(v);
    }
    return way;
  }

  /// The shortest way from the first border to another one.
  bool joinBorders(std::span<const FaceId> faces) {
    Queue queue;
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f))
        if (border_[at(v)] == 0) start(queue, v);
    const VertexId end = walk(queue, [&](VertexId v) { return border_[at(v)] > 0; });
    return end != kNone && cutBack(end).size() > 1;
  }

  bool cutToEnds(std::span<const FaceId> faces) {
    Queue queue;
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f))
        if (border_[at(v)] != kNone) start(queue, v);
    const auto never = [](VertexId) { return false; };
    (void)walk(queue, never);
    double first = 0;
    for (int k = 0; k < kMostCuts; ++k) {
      const VertexId end = mostStretched(faces);
      if (end == kNone) return k > 0;
      // What is near a cut that was just made may be helped by it already.
      const double far = distance_[at(end)];
      if (k > 0 && far < 0.4 * first) return true;
      first = std::max(first, far);
      for (const VertexId v : cutBack(end)) start(queue, v);
      (void)walk(queue, never);
    }
    return true;
  }

  /// The vertex that is far from the border in a stretched place.
  [[nodiscard]] VertexId mostStretched(std::span<const FaceId> faces) const {
    VertexId best = kNone;
    double most = 0;
    for (const FaceId f : faces)
      for (const VertexId v : mesh_.faceVertices(f)) {
        if (distance_[at(v)] == kFar) continue;
        const double score = (stretch_[at(f)] - 4) * distance_[at(v)];
        if (!(score > most)) continue;
        most = score;
        best = v;
      }
    return best;
  }

  const mesh::Mesh& mesh_;
  const std::vector<double>& stretch_;
  SeamFlags& seams_;
  std::vector<double> distance_;
  std::vector<EdgeId> from_;
  std::vector<Index> border_;
};

}  // namespace

void dropSlits(const mesh::Mesh& mesh, const std::vector<std::uint8_t>& isAsked, SeamFlags& seams) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  std::vector<int> degree(at(mesh.vertexCount()), 0);
  const auto count = [&](EdgeId e, int change) {
    degree[at(mesh.edge(e).a)] += change;
    degree[at(mesh.edge(e).b)] += change;
  };
  std::vector<EdgeId> queue;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    if (isInner(mesh, seams, e)) continue;
    count(e, 1);
    const auto faces = adjacency.edgeFaces(e);
    if (seams[at(e)] && faces.size() == 2 && isAsked[at(faces[0])] && isAsked[at(faces[1])])
      queue.push_back(e);
  }
  std::vector<std::uint8_t> mayGo(seams.size(), 0);
  for (const EdgeId e : queue) mayGo[at(e)] = 1;
  for (std::size_t i = 0; i < queue.size(); ++i) {
    const EdgeId e = queue[i];
    const VertexId a = mesh.edge(e).a, b = mesh.edge(e).b;
    if (!seams[at(e)] || (degree[at(a)] > 1 && degree[at(b)] > 1)) continue;
    seams[at(e)] = 0;
    count(e, -1);
    for (const VertexId v : {a, b})
      if (degree[at(v)] == 1)
        for (const EdgeId next : adjacency.vertexEdges(v))
          if (mayGo[at(next)] && seams[at(next)]) queue.push_back(next);
  }
}

Index relieveSeams(const mesh::Mesh& mesh, const std::vector<double>& stretch, SeamFlags& seams) {
  Relief relief(mesh, stretch, seams);
  Index count = 0;
  for (const auto& piece : piecesOf(mesh, seams, [&](FaceId f) { return stretch[at(f)] > 0; }))
    count += relief.cut(piece);
  return count;
}

}  // namespace host::ops
